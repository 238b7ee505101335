#include "library/LibraryIndex.h"

#include "text/NameOrder.h"
#include "text/NameRanks.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <map>
#include <unordered_map>

namespace kelvara {

LibraryIndex::LibraryIndex(std::span<const PhotoItem> items, const std::string& locale)
    : m_nameRanks{nameRanks(
          items.size(), [&](std::size_t i) { return items[i].url.name(); }, locale)} {
    groupShots(items);
    foldNames(items);
    listExtensions(items);
    hashPositions(items);
}

void LibraryIndex::groupShots(std::span<const PhotoItem> items) {
    std::unordered_map<FileURL, std::uint32_t> shots;
    shots.reserve(items.size());
    m_shotOf.reserve(items.size());
    for (const auto& item : items) {
        const auto [found, isNew] =
            shots.try_emplace(item.url.stemKey(), static_cast<std::uint32_t>(m_shots.size()));
        if (isNew) m_shots.push_back({found->first, std::nullopt, 0, false});
        m_shotOf.push_back(found->second);

        auto& shot = m_shots[found->second];
        if (item.creationDate && (!shot.date || *item.creationDate < *shot.date))
            shot.date = item.creationDate;
        shot.largestSize = std::max(shot.largestSize, item.fileSize);
        shot.hasRaw = shot.hasRaw || item.kind() == MediaKind::raw;
    }
}

void LibraryIndex::foldNames(std::span<const PhotoItem> items) {
    m_foldedStarts.reserve(items.size() + 1);
    for (const auto& item : items) {
        m_foldedNames += foldedForSearch(item.url.name());
        m_foldedStarts.push_back(static_cast<std::uint32_t>(m_foldedNames.size()));
    }
}

void LibraryIndex::listExtensions(std::span<const PhotoItem> items) {
    const auto uppercased = [](std::string_view extension) {
        std::string text{extension};
        for (auto& c : text) {
            if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        }
        return text;
    };
    std::map<std::string, std::uint32_t> ids;
    for (const auto& item : items) ids.try_emplace(uppercased(item.url.extension()));
    for (auto& [extension, id] : ids) {
        id = static_cast<std::uint32_t>(m_extensions.size());
        m_extensions.push_back(extension);
    }
    m_extensionIDs.reserve(items.size());
    for (const auto& item : items) m_extensionIDs.push_back(ids[uppercased(item.url.extension())]);
}

void LibraryIndex::hashPositions(std::span<const PhotoItem> items) {
    m_positions.assign(std::bit_ceil(items.size() * 2 + 1), 0);
    const auto mask = m_positions.size() - 1;
    for (std::uint32_t i = 0; i < items.size(); ++i) {
        auto place = items[i].url.hash() & mask;
        while (m_positions[place] != 0) place = (place + 1) & mask;
        m_positions[place] = i + 1;
    }
}

std::optional<std::size_t> LibraryIndex::find(const FileURL& url, std::span<const PhotoItem> items) const {
    if (m_positions.empty()) return std::nullopt;
    const auto mask = m_positions.size() - 1;
    for (auto place = url.hash() & mask; m_positions[place] != 0; place = (place + 1) & mask) {
        const auto position = m_positions[place] - 1;
        if (items[position].url == url) return position;
    }
    return std::nullopt;
}

} // namespace kelvara
