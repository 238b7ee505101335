#pragma once

#include "async/Executor.h"
#include "async/LatestOnly.h"
#include "model/Observable.h"
#include "platform/SharePicker.h"
#include "services/ShareService.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kelvara {

class AnalyticsClient;
class Settings;

enum class SharingProperty { progress, error, count };

/// Hands photos to others: as they are, or as small JPEGs that are made first. Main thread; the JPEGs are
/// made in the background, and a new job stops the one before.
class SharingController : public Observable<SharingProperty> {
public:
    struct Services {
        const ShareService& shares;
        SharePicker& picker;
        Settings& settings;
        AnalyticsClient& analytics;
        Executor& background;
        Executor& main;
    };
    struct Progress {
        std::size_t done = 0;
        std::size_t total = 0;
        friend bool operator==(const Progress&, const Progress&) = default;
    };
    using Anchor = SharePicker::Anchor;

    /// Everything outlives it. Tidies up what older jobs have left.
    explicit SharingController(const Services& services);

    /// The long edge of the small JPEGs, in pixels.
    [[nodiscard]] int longEdge() const;
    void shareJPEGs(std::vector<PhotoItem> photos, std::optional<ExportLook> look,
                    const std::optional<Anchor>& anchor = {});
    void airDropJPEGs(std::vector<PhotoItem> photos, std::optional<ExportLook> look);
    /// Hands files over unchanged: originals, or what was exported with this look.
    void shareFiles(std::vector<FileURL> files, const std::optional<Anchor>& anchor = {},
                    const std::optional<ExportLook>& look = {});

    /// Of the JPEGs being made; empty while none are.
    [[nodiscard]] const std::optional<Progress>& progress() const { return m_progress; }
    void cancel();
    /// What went wrong, for an alert; empty for nothing.
    [[nodiscard]] const std::string& error() const { return m_error; }
    void clearError() { assign(SharingProperty::error, m_error, {}); }

private:
    Services m_services;
    LatestOnly m_job;
    std::optional<Progress> m_progress;
    std::string m_error;
};

} // namespace kelvara
