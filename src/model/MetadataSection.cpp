#include "model/MetadataSection.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kelvara {
namespace {

bool isLower(char c) { return c >= 'a' && c <= 'z'; }
bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }

std::size_t rank(std::string_view title) {
    constexpr std::array<std::string_view, 5> first{"Exif", "TIFF", "ExifAux", "GPS", "IPTC"};
    const auto found = std::ranges::find(first, title);
    return found == first.end() ? 99 : static_cast<std::size_t>(found - first.begin());
}

} // namespace

std::string humanize(std::string_view key) {
    std::string words;
    for (std::size_t i = 0; i < key.size(); ++i) {
        const bool isStart = i > 0 && isUpper(key[i]);
        const bool endsWord = isStart && isLower(key[i - 1]);
        const bool endsRun = isStart && isUpper(key[i - 1]) && i + 1 < key.size() && isLower(key[i + 1]);
        if (endsWord || endsRun) words += ' ';
        words += key[i];
    }
    return words;
}

void sortForReading(std::vector<MetadataSection>& sections) {
    for (auto& section : sections) std::ranges::stable_sort(section.rows, {}, &MetadataSection::Row::label);
    std::ranges::stable_sort(sections, {}, [](const auto& section) { return rank(section.title); });
}

} // namespace kelvara
