#pragma once

#include "model/FileURL.h"
#include "services/MetadataService.h"

#include <QString>

#include <functional>
#include <unordered_map>
#include <vector>

namespace kelvara {

/// The exposure lines of the cells that are on screen: what is known at once, the rest when the pictures
/// leave time for it. Withdraws what scrolled away.
class CellExposures {
public:
    /// `onChange` follows each line that comes later, never during `show`.
    CellExposures(MetadataService& service, std::function<void(const FileURL&)> onChange);

    /// Makes these the ones on screen.
    void show(const std::vector<FileURL>& urls);
    /// "ƒ/2.8 · 1/250s · ISO 400"; empty for one that is unknown or not on screen.
    [[nodiscard]] const QString& operator[](const FileURL& url) const;
    /// Whether a line is still to come.
    [[nodiscard]] bool isLoading() const;

private:
    struct Entry {
        QString line;
        bool isPending = false;
        MetadataRequest request;
    };
    void load(const FileURL& url, Entry& entry);

    MetadataService& m_service;
    std::function<void(const FileURL&)> m_onChange;
    std::unordered_map<FileURL, Entry> m_entries;
};

} // namespace kelvara
