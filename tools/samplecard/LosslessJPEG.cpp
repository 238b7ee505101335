#include "samplecard/LosslessJPEG.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <numeric>

namespace kelvara::samplecard {
namespace {

// A difference is coded as its number of bits, Huffman coded, followed by the bits themselves.
constexpr std::size_t categories = 16;

struct Code {
    std::uint32_t bits = 0;
    int length = 0;
};

int categoryOf(int difference) {
    return static_cast<int>(std::bit_width(static_cast<unsigned>(difference < 0 ? -difference : difference)));
}

/// Calls `visit(difference)` for every sample in the order of the scan.
template <typename Visit> void forEachDifference(const std::vector<std::uint16_t>& mosaic, int width,
                                                 int height, int bits, Visit visit) {
    const std::uint16_t* row = mosaic.data();
    for (int y = 0; y < height; ++y, row += width) {
        // The first samples of a row are predicted from the row above, those of the first row from the
        // middle.
        std::array<int, 2> left{1 << (bits - 1), 1 << (bits - 1)};
        if (y > 0) left = {row[-width], row[1 - width]};
        for (int x = 0; x < width; x += 2) {
            for (int component = 0; component < 2; ++component) {
                const int value = row[x + component];
                int& predicted = left[static_cast<std::size_t>(component)];
                visit(value - predicted);
                predicted = value;
            }
        }
    }
}

/// Which category has which length: the commonest three get two bits, each further one a bit more. Not the
/// shortest possible, but near it for photographs.
struct Table {
    std::array<std::uint8_t, categories> byRank{};
    std::array<Code, categories> codes{};
};

int lengthOfRank(std::size_t rank) { return rank < 3 ? 2 : static_cast<int>(rank); }

Table tableFor(const std::vector<std::uint16_t>& mosaic, int width, int height, int bits) {
    std::array<std::uint64_t, categories> counts{};
    forEachDifference(mosaic, width, height, bits,
                      [&](int difference) { ++counts[static_cast<std::size_t>(categoryOf(difference))]; });
    Table table;
    std::iota(table.byRank.begin(), table.byRank.end(), std::uint8_t{0});
    std::stable_sort(table.byRank.begin(), table.byRank.end(),
                     [&](std::uint8_t a, std::uint8_t b) { return counts[a] > counts[b]; });
    std::uint32_t next = 0;
    int length = 2;
    for (std::size_t rank = 0; rank < categories; ++rank, ++next) {
        next <<= lengthOfRank(rank) - length;
        length = lengthOfRank(rank);
        table.codes[table.byRank[rank]] = {next, length};
    }
    return table;
}

class BitWriter {
public:
    explicit BitWriter(std::string& out) : m_out{out} {}

    void put(std::uint32_t bits, int length) {
        m_pending = (m_pending << length) | (bits & ((std::uint64_t{1} << length) - 1));
        m_count += length;
        while (m_count >= 8) {
            m_count -= 8;
            byte(static_cast<unsigned char>((m_pending >> m_count) & 0xFF));
        }
    }
    void flush() {
        if (m_count > 0) put(0x7F, 8 - m_count);
    }

private:
    void byte(unsigned char value) {
        m_out.push_back(static_cast<char>(value));
        if (value == 0xFF) m_out.push_back('\0');
    }

    std::string& m_out;
    std::uint64_t m_pending = 0;
    int m_count = 0;
};

void header(std::string& out, const Table& table, int width, int height, int bits) {
    const auto bytes = [&](std::initializer_list<int> values) {
        for (const int value : values) out.push_back(static_cast<char>(value));
    };
    bytes({0xFF, 0xD8, 0xFF, 0xC4, 0, 3 + 16 + static_cast<int>(categories), 0});
    for (int length = 1; length <= 16; ++length) {
        int count = 0;
        for (std::size_t rank = 0; rank < categories; ++rank) count += lengthOfRank(rank) == length ? 1 : 0;
        bytes({count});
    }
    for (const std::uint8_t category : table.byRank) bytes({category});
    bytes({0xFF, 0xC3, 0, 14, bits, height >> 8, height & 0xFF, (width / 2) >> 8, (width / 2) & 0xFF, 2});
    bytes({0, 0x11, 0, 1, 0x11, 0});
    bytes({0xFF, 0xDA, 0, 10, 2, 0, 0, 1, 0, 1, 0, 0});
}

} // namespace

std::string encodeLosslessJPEG(const std::vector<std::uint16_t>& mosaic, int width, int height, int bits) {
    const Table table = tableFor(mosaic, width, height, bits);
    std::string out;
    out.reserve(mosaic.size() * 3 / 2);
    header(out, table, width, height, bits);
    BitWriter writer{out};
    forEachDifference(mosaic, width, height, bits, [&](int difference) {
        const int category = categoryOf(difference);
        const Code code = table.codes[static_cast<std::size_t>(category)];
        writer.put(code.bits, code.length);
        // A negative difference is stored as its value less one, cut to the category's bits.
        writer.put(static_cast<std::uint32_t>(difference < 0 ? difference - 1 : difference), category);
    });
    writer.flush();
    out += "\xFF\xD9";
    return out;
}

} // namespace kelvara::samplecard
