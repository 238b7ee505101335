#include "views/CellExposures.h"

#include "views/Text.h"

#include <algorithm>
#include <utility>

namespace kelvara {

CellExposures::CellExposures(MetadataService& service, std::function<void(const FileURL&)> onChange)
    : m_service{service}, m_onChange{std::move(onChange)} {}

void CellExposures::show(const std::vector<FileURL>& urls) {
    std::unordered_map<FileURL, Entry> shown;
    shown.reserve(urls.size());
    for (const auto& url : urls) {
        const auto [place, isNew] = shown.try_emplace(url);
        if (!isNew) continue;
        if (const auto known = m_entries.find(url); known != m_entries.end()) {
            place->second = std::move(known->second);
        } else {
            load(url, place->second);
        }
    }
    m_entries = std::move(shown);
}

void CellExposures::load(const FileURL& url, Entry& entry) {
    if (const auto info = m_service.cachedExif(url)) {
        entry.line = text(info->summaryLine());
        return;
    }
    entry.isPending = true;
    entry.request =
        m_service.exif(url, MetadataService::Priority::background, [this, url](const ExifInfo& info) {
            const auto found = m_entries.find(url);
            if (found == m_entries.end()) return;
            found->second.isPending = false;
            found->second.line = text(info.summaryLine());
            if (!found->second.line.isEmpty()) m_onChange(url);
        });
}

const QString& CellExposures::operator[](const FileURL& url) const {
    static const QString none;
    const auto found = m_entries.find(url);
    return found == m_entries.end() ? none : found->second.line;
}

bool CellExposures::isLoading() const {
    return std::ranges::any_of(m_entries, [](const auto& entry) { return entry.second.isPending; });
}

} // namespace kelvara
