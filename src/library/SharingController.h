#pragma once

#include "async/Executor.h"
#include "async/LatestOnly.h"
#include "model/Observable.h"
#include "platform/SharePicker.h"
#include "services/ShareService.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kelvara {

class AnalyticsClient;
class Settings;
struct PhotosShared;

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
    /// What went wrong, for an alert: a sentence on each line; empty for nothing. While there is something,
    /// the files that could be made wait.
    [[nodiscard]] const std::string& error() const { return m_error; }
    void clearError();

private:
    void make(std::vector<PhotoItem> photos, std::optional<ExportLook> look,
              std::function<void(std::vector<FileURL>)> handOver);
    SharePicker::OnEnd whenHandedOver(PhotosShared event, std::size_t count);
    void endJob();
    void addError(const std::string& sentence);

    Services m_services;
    LatestOnly m_job;
    std::optional<Progress> m_progress;
    std::string m_error;                                        // one line for each thing
    std::function<void()> m_waiting;                            // hands over what was made nevertheless
    std::shared_ptr<int> m_running;                             // while JPEGs are made
    std::shared_ptr<int> m_lifetime = std::make_shared<int>(0); // gone with it
};

} // namespace kelvara
