#include "views/PresetListLayout.h"

#include "views/Theme.h"

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr int margin = spacing::medium;
constexpr int rightMargin = 3; // room for a tile's frame; the rest of it is the scroll bar
constexpr int gap = 10;        // has room for the frame of a chosen tile
constexpr int comfortableTile = 120;
constexpr int fewestColumns = 2;
constexpr int noneHeight = 48;
constexpr int headerHeight = 32;

using Entry = PresetListLayout::Entry;

/// The first entry that ends below `y`.
auto firstBelow(const std::vector<Entry>& entries, int y) {
    return std::partition_point(entries.begin(), entries.end(),
                                [y](const Entry& entry) { return entry.rect.bottom() < y; });
}

} // namespace

PresetListLayout::PresetListLayout(int width, int titleHeight, const std::vector<Section>& sections) {
    const auto room = std::max(width - margin - rightMargin, fewestColumns * 24);
    m_columns = std::max((room + gap) / (comfortableTile + gap), fewestColumns);
    const auto tileWidth = (room - (m_columns - 1) * gap) / m_columns;
    m_pictureSize = {tileWidth, tileWidth * 2 / 3};

    m_height = gap / 2;
    m_entries.push_back({Entry::Kind::none, 0, 0, {margin, m_height, room, noneHeight}});
    m_height += noneHeight + gap / 2;
    for (std::size_t section = 0; section < sections.size(); ++section) {
        m_entries.push_back(
            {Entry::Kind::header, section, 0, {0, m_height, margin + room + rightMargin, headerHeight}});
        m_height += headerHeight;
        if (sections[section].isExpanded)
            addTiles(section, sections[section].count, m_pictureSize.height() + titleHeight);
    }
    m_height += gap;
}

void PresetListLayout::addTiles(std::size_t section, std::size_t count, int tileHeight) {
    m_height += gap / 2;
    const auto columns = static_cast<std::size_t>(m_columns);
    for (std::size_t preset = 0; preset < count; ++preset) {
        const auto column = static_cast<int>(preset % columns);
        if (column == 0 && preset > 0) m_height += tileHeight + gap;
        const auto x = margin + column * (m_pictureSize.width() + gap);
        m_entries.push_back(
            {Entry::Kind::tile, section, preset, {x, m_height, m_pictureSize.width(), tileHeight}});
    }
    m_height += tileHeight + gap / 2;
}

IndexRange PresetListLayout::visible(int top, int height) const {
    const auto begin = firstBelow(m_entries, top);
    const auto end =
        std::partition_point(begin, m_entries.end(), [bottom = top + height](const Entry& entry) {
            return entry.rect.top() < bottom;
        });
    return {static_cast<std::size_t>(begin - m_entries.begin()),
            static_cast<std::size_t>(end - m_entries.begin())};
}

std::optional<std::size_t> PresetListLayout::indexAt(const QPoint& point) const {
    for (auto entry = firstBelow(m_entries, point.y()); entry != m_entries.end(); ++entry) {
        if (entry->rect.top() > point.y()) break;
        if (entry->rect.contains(point)) return static_cast<std::size_t>(entry - m_entries.begin());
    }
    return std::nullopt;
}

std::size_t PresetListLayout::neighbour(std::size_t index, Step step) const {
    if (step == Step::left) return index > 0 ? index - 1 : index;
    if (step == Step::right) return std::min(index + 1, m_entries.size() - 1);
    // Of the row before or after the one that is nearest sideways.
    const auto& from = m_entries[index].rect;
    const auto direction = step == Step::up ? -1 : 1;
    auto best = index;
    const auto distance = [&](std::size_t other) {
        return std::abs(m_entries[other].rect.center().x() - from.center().x());
    };
    std::optional<int> row;
    for (auto at = static_cast<std::ptrdiff_t>(index) + direction;
         at >= 0 && at < static_cast<std::ptrdiff_t>(m_entries.size()); at += direction) {
        const auto other = static_cast<std::size_t>(at);
        const auto y = m_entries[other].rect.top();
        if (y == from.top()) continue;
        if (row && y != *row) break;
        if (!row || distance(other) < distance(best)) best = other;
        row = y;
    }
    return best;
}

int PresetListLayout::topThatShows(std::size_t index, int top, int height) const {
    const auto rect = m_entries[index].rect.adjusted(0, -gap / 2, 0, gap / 2);
    if (rect.top() < top) return rect.top();
    return rect.bottom() >= top + height ? rect.bottom() + 1 - height : top;
}

} // namespace kelvara
