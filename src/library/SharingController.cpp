#include "library/SharingController.h"

#include "async/NewestValue.h"
#include "library/Settings.h"
#include "platform/AnalyticsClient.h"
#include "text/Localized.h"

#include <fmt/format.h>

#include <utility>

namespace kelvara {

namespace {

/// More sentences than this are no help, and no alert is tall enough for all.
constexpr std::size_t maximumSentences = 8;

std::string joined(const std::vector<std::string>& failures) {
    std::string lines;
    for (std::size_t i = 0; i < failures.size() && i < maximumSentences; ++i) {
        if (i > 0) lines += '\n';
        lines += failures[i];
    }
    if (failures.size() > maximumSentences) {
        lines += fmt::format(fmt::runtime(localized("\nand {} more.")), failures.size() - maximumSentences);
    }
    return lines;
}

PhotosShared sharing(bool byAirDrop, const std::optional<ExportLook>& look) {
    return {.count = 0,
            .byAirDrop = byAirDrop,
            .withPreset = look && look->preset,
            .withEdits = look && !look->adjustments.empty()};
}

} // namespace

SharingController::SharingController(const Services& services)
    : m_services{services}, m_job{services.background, services.main} {
    services.background.post([&shares = services.shares] { shares.purgeOldExports(); });
}

int SharingController::longEdge() const { return static_cast<int>(m_services.settings.shareLongEdge()); }

void SharingController::shareJPEGs(std::vector<PhotoItem> photos, std::optional<ExportLook> look,
                                   const std::optional<Anchor>& anchor) {
    const auto event = sharing(false, look);
    make(std::move(photos), std::move(look), [this, anchor, event](std::vector<FileURL> files) {
        const auto onEnd = whenHandedOver(event, files.size());
        m_services.picker.share(std::move(files), anchor, onEnd);
    });
}

void SharingController::airDropJPEGs(std::vector<PhotoItem> photos, std::optional<ExportLook> look) {
    const auto event = sharing(true, look);
    make(std::move(photos), std::move(look), [this, event](std::vector<FileURL> files) {
        const auto onEnd = whenHandedOver(event, files.size());
        m_services.picker.shareNearby(std::move(files), onEnd, [onEnd] {
            onEnd(Failure{localized("AirDrop isn't available. Check that Wi-Fi and Bluetooth are on.")});
        });
    });
}

void SharingController::shareFiles(std::vector<FileURL> files, const std::optional<Anchor>& anchor,
                                   const std::optional<ExportLook>& look) {
    if (files.empty()) return;
    const auto onEnd = whenHandedOver(sharing(false, look), files.size());
    m_services.picker.share(std::move(files), anchor, onEnd);
}

SharePicker::OnEnd SharingController::whenHandedOver(PhotosShared event, std::size_t count) {
    event.count = static_cast<std::int64_t>(count);
    return [this, event, alive = std::weak_ptr{m_lifetime}](const Result<void, std::string>& end) {
        if (alive.expired()) return;
        if (end) {
            m_services.analytics.record(event);
        } else {
            addError(end.error());
        }
    };
}

void SharingController::make(std::vector<PhotoItem> photos, std::optional<ExportLook> look,
                             std::function<void(std::vector<FileURL>)> handOver) {
    if (photos.empty()) return;
    m_waiting = {};
    m_running = std::make_shared<int>(0);
    const NewestValue<Progress> published{
        m_services.main, [this, running = std::weak_ptr{m_running}](const Progress& progress) {
            if (!running.expired()) assign(SharingProperty::progress, m_progress, {progress});
        }};
    assign(SharingProperty::progress, m_progress, {Progress{0, photos.size()}});
    m_job.start(
        [&shares = m_services.shares, published, photos = std::move(photos), look = std::move(look),
         edge = longEdge()](const std::stop_token& stop) {
            return shares.makeJPEGs(photos, look, edge, stop, [&](std::size_t done, std::size_t total) {
                published.send({done, total});
            });
        },
        [this, handOver = std::move(handOver)](Result<ShareService::Made, FileError> made) {
            endJob();
            if (!made) return addError(message(made.error()));
            if (!made->failures.empty()) addError(joined(made->failures));
            if (made->files.empty()) return;
            // One after the other, for a menu of targets would lie over the alert.
            m_waiting = [handOver, files = std::move(made->files)] { handOver(files); };
            if (m_error.empty()) clearError();
        });
}

void SharingController::cancel() {
    m_job.cancel();
    endJob();
}

void SharingController::endJob() {
    m_running.reset(); // what it still has to tell of its progress comes too late
    assign(SharingProperty::progress, m_progress, {});
}

void SharingController::clearError() {
    assign(SharingProperty::error, m_error, {});
    if (const auto handOver = std::exchange(m_waiting, {})) handOver();
}

void SharingController::addError(const std::string& sentence) {
    assign(SharingProperty::error, m_error, m_error.empty() ? sentence : m_error + '\n' + sentence);
}

} // namespace kelvara
