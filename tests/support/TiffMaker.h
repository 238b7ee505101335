#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace kelvara {

/// Lays out TIFF data by hand, least significant byte first: write blobs and directories, then name the first
/// directory. Nothing is checked, so that broken files can be made too.
class TiffMaker {
public:
    using Bytes = std::vector<std::uint8_t>;
    static constexpr std::uint16_t shortType = 3, longType = 4;

    struct Entry {
        std::uint16_t tag;
        std::uint32_t value; ///< Or the offset of the values.
        std::uint32_t count = 1;
        std::uint16_t type = longType;
    };

    TiffMaker() : m_bytes{'I', 'I', 42, 0, 0, 0, 0, 0} {}

    /// Where the next blob or directory will lie.
    [[nodiscard]] std::uint32_t position() const { return static_cast<std::uint32_t>(m_bytes.size()); }

    std::uint32_t add(const Bytes& blob) {
        const auto at = position();
        m_bytes.insert(m_bytes.end(), blob.begin(), blob.end());
        return at;
    }

    std::uint32_t addLongs(const std::vector<std::uint32_t>& values) {
        const auto at = position();
        for (const auto value : values) number(value, 4);
        return at;
    }

    std::uint32_t addDirectory(const std::vector<Entry>& entries, std::uint32_t next = 0) {
        const auto at = position();
        number(static_cast<std::uint32_t>(entries.size()), 2);
        for (const auto& entry : entries) {
            number(entry.tag, 2);
            number(entry.type, 2);
            number(entry.count, 4);
            number(entry.value, 4);
        }
        number(next, 4);
        return at;
    }

    [[nodiscard]] Bytes finish(std::uint32_t firstDirectory) {
        for (std::size_t i = 0; i < 4; ++i)
            m_bytes[4 + i] = static_cast<std::uint8_t>(firstDirectory >> (8 * i));
        return m_bytes;
    }

private:
    void number(std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i) m_bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }

    Bytes m_bytes;
};

} // namespace kelvara
