#pragma once

#include "imaging/codecs/ByteSource.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>

namespace kelvara {

/// What a RAW file based on TIFF says about itself, without its pictures: a copy of its front part in which
/// only the directories and the values that hang on them are filled in, at their own places. For a library
/// that wants the whole file in memory; a card is asked for some hundred kilobytes instead.
class TiffExcerpt {
public:
    /// No bytes of a TIFF that was forged to be copied again and again. Empty when the file is no TIFF, can't
    /// be read or memory is short.
    [[nodiscard]] static std::optional<TiffExcerpt> read(const ByteRange& file);

    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return {m_bytes.get(), m_size}; }

private:
    struct Free {
        void operator()(std::uint8_t* bytes) const { std::free(bytes); }
    };

    TiffExcerpt(std::uint8_t* bytes, std::size_t size) : m_bytes{bytes}, m_size{size} {}

    std::unique_ptr<std::uint8_t, Free> m_bytes; // of calloc: what is never touched takes no memory
    std::size_t m_size;
};

} // namespace kelvara
