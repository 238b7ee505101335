#include "services/FileScanner.h"

#include "model/StableMergeSort.h"
#include "text/NameRanks.h"

#include <algorithm>
#include <cstdint>

namespace kelvara {

namespace {

class MediaCollector : public FolderWalkVisitor {
public:
    explicit MediaCollector(const std::stop_token& stop) : m_stop{stop} {}

    Answer met(std::string_view name) override {
        // Polling the token for every entry would cost as much as the entry.
        if (++m_entries % 256 == 0 && m_stop.stop_requested()) {
            m_wasStopped = true;
            return Answer::stop;
        }
        const auto dot = name.rfind('.');
        if (dot == std::string_view::npos || !mediaKind(name.substr(dot + 1))) return Answer::pass;
        return Answer::describe;
    }

    void described(std::string_view folder, std::string_view name, const FileStatus& status) override {
        if (status.kind != FileStatus::Kind::file) return;
        std::string path;
        path.reserve(folder.size() + 1 + name.size());
        path.append(folder).append(1, '/').append(name);
        m_items.push_back({FileURL{std::move(path)}, status.size, status.creationDate});
    }

    [[nodiscard]] bool wasStopped() const { return m_wasStopped; }
    std::vector<PhotoItem> takeItems() { return std::move(m_items); }

private:
    const std::stop_token& m_stop;
    std::size_t m_entries = 0;
    bool m_wasStopped = false;
    std::vector<PhotoItem> m_items;
};

/// An item as its place in the order sees it.
struct Placed {
    std::optional<FileTime> date;
    std::uint32_t nameRank = 0;
    std::uint32_t item = 0;
};

/// With some dates missing this is no consistent order (a dated file can precede an undated one by name, and
/// follow it by way of a third), which the standard library's sorts do not permit.
bool precedes(const Placed& a, const Placed& b) {
    if (a.date && b.date && *a.date != *b.date) return *a.date < *b.date;
    return a.nameRank < b.nameRank;
}

std::vector<PhotoItem> inOrder(std::vector<PhotoItem> items, const std::string& locale) {
    // Directories list their entries in no order at all; paths make the result of ties repeatable.
    std::sort(items.begin(), items.end(), [](const auto& a, const auto& b) { return a.url < b.url; });

    const auto ranks = nameRanks(
        items.size(), [&](std::size_t i) { return items[i].url.name(); }, locale);
    std::vector<Placed> places;
    places.reserve(items.size());
    for (std::uint32_t i = 0; i < items.size(); ++i) places.push_back({items[i].creationDate, ranks[i], i});
    stableMergeSort(places, precedes);

    std::vector<PhotoItem> ordered;
    ordered.reserve(items.size());
    for (const auto& place : places) ordered.push_back(std::move(items[place.item]));
    return ordered;
}

} // namespace

Result<std::vector<PhotoItem>, FileScanner::Cancelled>
FileScanner::collect(const FileURL& folder, const std::stop_token& stop) const {
    MediaCollector collector{stop};
    // A source that can't be read has no photos to show, which the caller says in its own words.
    static_cast<void>(m_files.walk(folder, collector));
    if (collector.wasStopped()) return Failure{Cancelled{}};
    return inOrder(collector.takeItems(), m_locale);
}

} // namespace kelvara
