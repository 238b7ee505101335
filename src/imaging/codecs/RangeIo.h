#pragma once

#include "imaging/codecs/ByteSource.h"

#include <exiv2/exiv2.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kelvara {

/// Lets Exiv2 read a part of a file, in blocks rather than bytes and never by mapping the file: a card that
/// is pulled out then ends in an error and not in a signal. Read-only.
class RangeIo : public Exiv2::BasicIo {
public:
    explicit RangeIo(ByteRange bytes) : m_bytes{std::move(bytes)} {}

    int open() override;
    int close() override { return 0; }
    long read(Exiv2::byte* to, long count) override;
    /// No more than any metadata takes: the length may be forged.
    Exiv2::DataBuf read(long count) override;
    int getb() override;
    int seek(long offset, Position from) override;
    [[nodiscard]] long tell() const override { return static_cast<long>(m_position); }
    [[nodiscard]] size_t size() const override { return m_bytes.size(); }
    [[nodiscard]] bool isopen() const override { return true; }
    [[nodiscard]] int error() const override { return 0; }
    [[nodiscard]] bool eof() const override { return m_isAtEnd; }
    [[nodiscard]] std::string path() const override { return {}; }
    /// A copy in memory, for the small files of old cameras; throws for larger ones.
    Exiv2::byte* mmap(bool isWriteable) override;
    int munmap() override { return 0; }

    long write(const Exiv2::byte*, long) override { return 0; }
    long write(BasicIo&) override { return 0; }
    int putb(Exiv2::byte) override { return EOF; }
    void transfer(BasicIo&) override {}

private:
    ByteRange m_bytes;
    std::uint64_t m_position = 0;
    bool m_isAtEnd = false;
    std::vector<std::uint8_t> m_block;
    std::uint64_t m_blockStart = 0;
    std::vector<std::uint8_t> m_copy;
};

/// The part of a file as Exiv2 sees it, nothing of its metadata read yet. Null when the bytes are of no
/// format that the library knows; may throw what it throws.
[[nodiscard]] std::unique_ptr<Exiv2::Image> openByExiv2(ByteRange bytes);

} // namespace kelvara
