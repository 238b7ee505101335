#pragma once

#include "model/FileURL.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace kelvara {

/// Bytes that are read where they are needed: a file, or a block of memory. Thread-safe, as it has no
/// position.
class ByteSource {
public:
    virtual ~ByteSource() = default;
    [[nodiscard]] virtual std::uint64_t size() const = 0;
    /// Fills `to` from `offset` on; how many bytes there were, 0 beyond the end and on errors.
    [[nodiscard]] virtual std::size_t read(std::uint64_t offset, std::span<std::uint8_t> to) const = 0;

    /// Null when the file can't be opened or is no regular file.
    [[nodiscard]] static std::shared_ptr<const ByteSource> ofFile(const FileURL& url);
    [[nodiscard]] static std::shared_ptr<const ByteSource> ofMemory(std::vector<std::uint8_t> bytes);
};

using ByteSourcePtr = std::shared_ptr<const ByteSource>;

/// A part of a source, never reaching beyond its end.
class ByteRange {
public:
    ByteRange() = default;
    explicit ByteRange(ByteSourcePtr source);
    /// Cut off at this range's end; empty when `offset` lies beyond it.
    [[nodiscard]] ByteRange part(std::uint64_t offset, std::uint64_t length) const;

    [[nodiscard]] std::uint64_t size() const { return m_size; }
    [[nodiscard]] bool isEmpty() const { return m_size == 0; }
    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::uint8_t> to) const;
    /// All of `length` bytes, or none when they are not all there.
    [[nodiscard]] std::vector<std::uint8_t> bytes(std::uint64_t offset, std::size_t length) const;

private:
    ByteSourcePtr m_source;
    std::uint64_t m_offset = 0;
    std::uint64_t m_size = 0;
};

} // namespace kelvara
