#include "samplecard/TiffDirectory.h"

#include <algorithm>
#include <cstddef>

namespace kelvara::samplecard {
namespace {

enum FieldType {
    byteField = 1,
    textField = 2,
    shortField = 3,
    longField = 4,
    rationalField = 5,
    undefinedField = 7,
    signedRationalField = 10
};

void append(std::string& out, std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

void overwrite(std::string& out, std::size_t position, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) out[position + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

void pad(std::string& out) {
    if (out.size() % 2 != 0) out.push_back('\0');
}

std::string packed(const std::vector<TiffDirectory::Rational>& values) {
    std::string out;
    for (const auto& [numerator, denominator] : values) {
        append(out, static_cast<std::uint64_t>(numerator), 4);
        append(out, static_cast<std::uint64_t>(denominator), 4);
    }
    return out;
}

} // namespace

class TiffDirectory::Writer {
public:
    Writer() : m_out{"II*\0", 4} { append(m_out, 8, 4); }

    /// Gives the position where the directory's link to its successor stands.
    std::size_t place(const TiffDirectory& directory) {
        std::vector<const Entry*> sorted;
        for (const Entry& entry : directory.m_entries) sorted.push_back(&entry);
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const Entry* a, const Entry* b) { return a->tag < b->tag; });

        append(m_out, sorted.size(), 2);
        const std::size_t entries = m_out.size();
        const std::size_t link = entries + sorted.size() * 12;
        m_out.resize(link + 4);
        for (std::size_t i = 0; i < sorted.size(); ++i) placeEntry(*sorted[i], entries + i * 12);
        return link;
    }

    void link(std::size_t position) { overwrite(m_out, position, here()); }

    std::string finished() {
        std::size_t size = m_out.size();
        for (const auto& block : m_blocks) size += block.entry->data.size() + 1;
        m_out.reserve(size);
        for (const auto& [entry, position] : m_blocks) {
            overwrite(m_out, position, here());
            m_out += entry->data;
            pad(m_out);
        }
        return std::move(m_out);
    }

private:
    struct Block {
        const Entry* entry;
        std::size_t position; // of the offset that points to the data
    };

    [[nodiscard]] std::uint32_t here() const { return static_cast<std::uint32_t>(m_out.size()); }

    void placeEntry(const Entry& entry, std::size_t position) {
        std::string head;
        append(head, static_cast<std::uint64_t>(entry.tag), 2);
        append(head, static_cast<std::uint64_t>(entry.type), 2);
        append(head, entry.count, 4);
        std::copy(head.begin(), head.end(), m_out.begin() + static_cast<std::ptrdiff_t>(position));
        std::size_t valuePosition = position + 8;
        if (entry.value.size() <= 4) {
            std::copy(entry.value.begin(), entry.value.end(),
                      m_out.begin() + static_cast<std::ptrdiff_t>(valuePosition));
        } else {
            overwrite(m_out, valuePosition, here());
            valuePosition = m_out.size();
            m_out += entry.value;
            pad(m_out);
        }
        for (std::size_t i = 0; i < entry.children.size(); ++i) {
            overwrite(m_out, valuePosition + i * 4, here());
            place(entry.children[i]);
        }
        if (!entry.data.empty()) m_blocks.push_back({&entry, valuePosition});
    }

    std::string m_out;
    std::vector<Block> m_blocks;
};

TiffDirectory::Entry& TiffDirectory::add(int tag, int type, std::uint32_t count, std::string value) {
    return m_entries.emplace_back(Entry{tag, type, count, std::move(value), {}, {}});
}

void TiffDirectory::bytes(int tag, const std::vector<int>& values) {
    std::string packedValues;
    for (const int value : values) append(packedValues, static_cast<std::uint64_t>(value), 1);
    add(tag, byteField, static_cast<std::uint32_t>(values.size()), std::move(packedValues));
}

void TiffDirectory::shorts(int tag, const std::vector<int>& values) {
    std::string packedValues;
    for (const int value : values) append(packedValues, static_cast<std::uint64_t>(value), 2);
    add(tag, shortField, static_cast<std::uint32_t>(values.size()), std::move(packedValues));
}

void TiffDirectory::longs(int tag, const std::vector<std::uint32_t>& values) {
    std::string packedValues;
    for (const std::uint32_t value : values) append(packedValues, value, 4);
    add(tag, longField, static_cast<std::uint32_t>(values.size()), std::move(packedValues));
}

void TiffDirectory::text(int tag, const std::string& value) {
    add(tag, textField, static_cast<std::uint32_t>(value.size() + 1), value + '\0');
}

void TiffDirectory::undefined(int tag, std::string value) {
    const auto count = static_cast<std::uint32_t>(value.size());
    add(tag, undefinedField, count, std::move(value));
}

void TiffDirectory::rationals(int tag, const std::vector<Rational>& values) {
    add(tag, rationalField, static_cast<std::uint32_t>(values.size()), packed(values));
}

void TiffDirectory::signedRationals(int tag, const std::vector<Rational>& values) {
    add(tag, signedRationalField, static_cast<std::uint32_t>(values.size()), packed(values));
}

void TiffDirectory::directories(int tag, std::vector<TiffDirectory> children) {
    const auto count = static_cast<std::uint32_t>(children.size());
    add(tag, longField, count, std::string(children.size() * 4, '\0')).children = std::move(children);
}

void TiffDirectory::data(int offsetTag, int lengthTag, std::string bytes) {
    longs(lengthTag, {static_cast<std::uint32_t>(bytes.size())});
    add(offsetTag, longField, 1, std::string(4, '\0')).data = std::move(bytes);
}

std::string TiffDirectory::file(const TiffDirectory& first, const TiffDirectory* next) {
    Writer writer;
    const std::size_t link = writer.place(first);
    if (next) {
        writer.link(link);
        writer.place(*next);
    }
    return writer.finished();
}

} // namespace kelvara::samplecard
