// LibraryViewModel: copying the marked files, and exporting photos.

#include "async/NewestValue.h"
#include "library/CopiedItems.h"
#include "library/LibraryViewModel.h"
#include "library/PreferenceKeys.h"
#include "model/OneImagePerShot.h"
#include "platform/AnalyticsClient.h"
#include "platform/Desktop.h"
#include "platform/FolderChooser.h"
#include "platform/Preferences.h"
#include "text/Localized.h"

#include <algorithm>
#include <iterator>

namespace kelvara {

namespace {

CopyService::Report cancelledReport(const FileURL& destination) {
    CopyService::Report report;
    report.destination = destination;
    report.wasCancelled = true;
    return report;
}

/// What is known before the plan is made, which takes a while for many files.
CopyService::Progress beginning(const std::vector<PhotoItem>& items) {
    CopyService::Progress progress;
    progress.totalFiles = std::ssize(items);
    for (const auto& item : items) progress.totalBytes += item.fileSize;
    return progress;
}

} // namespace

void LibraryViewModel::setCopiesIntoDateFolders(bool intoDateFolders) {
    if (assign(Property::copiesIntoDateFolders, m_copiesIntoDateFolders, intoDateFolders)) {
        m_services.preferences.setBoolean(PreferenceKeys::copiesIntoDateFolders, intoDateFolders);
    }
}

void LibraryViewModel::setVerifiesCopies(bool verifies) {
    if (assign(Property::verifiesCopies, m_verifiesCopies, verifies)) {
        m_services.preferences.setBoolean(PreferenceKeys::verifiesCopies, verifies);
    }
}

void LibraryViewModel::chooseCopyDestination(std::function<void()> onChosen) {
    const auto start = m_copyDestination.isEmpty() ? m_services.desktop.picturesFolder() : m_copyDestination;
    m_services.folderChooser.choose(
        {.prompt = localized("Copy Here"),
         .message = localized("Choose where marked photos are copied. Use New Folder to make one."),
         .startFolder = start,
         .canCreateFolders = true,
         .checkBox = localized("Sort into date folders (YYYY-MM-DD)"),
         .isChecked = m_copiesIntoDateFolders},
        [this, alive = std::weak_ptr{m_lifetime},
         onChosen = std::move(onChosen)](const std::optional<FolderChooser::Choice>& choice) {
            if (!choice || alive.expired()) return;
            const Change change{*this};
            assign(Property::copyDestination, m_copyDestination, choice->folder.standardized());
            m_services.preferences.setText(PreferenceKeys::copyDestination, m_copyDestination.path());
            setCopiesIntoDateFolders(choice->isChecked);
            if (onChosen) onChosen();
        });
}

void LibraryViewModel::startCopy(std::optional<CopyService::Export> exportAs,
                                 std::optional<SharePicker::Anchor> sharingFrom) {
    if (isCopying()) return;
    const bool hasNone = exportAs ? m_exportItems.empty() : m_checked.empty();
    if (hasNone || isDeleting()) { // a file that goes can't be copied
        m_services.desktop.beep();
        return;
    }
    if (m_copyDestination.isEmpty() && !sharingFrom) {
        chooseCopyDestination([this, exportAs = std::move(exportAs)] { runCopy(exportAs, {}); });
    } else {
        runCopy(exportAs, sharingFrom);
    }
}

std::vector<PhotoItem> LibraryViewModel::markedItems() const {
    std::vector<PhotoItem> items;
    items.reserve(m_checked.size());
    for (const auto position : m_sortedPositions) {
        if (m_checked.isChecked(position)) items.push_back((*m_items)[position]);
    }
    return items;
}

CopyService::PlanRequest LibraryViewModel::copyRequest(const std::optional<CopyService::Export>& exportAs,
                                                       bool isForSharing) const {
    CopyService::PlanRequest request{.items = exportAs ? oneImagePerShot(m_exportItems) : markedItems(),
                                     .destination = {},
                                     .source = std::nullopt,
                                     .verifies = m_verifiesCopies && !exportAs,
                                     .exportAs = exportAs};
    if (isForSharing) return request; // into a folder of its own, wherever that is
    request.destination = m_copyDestination;
    request.intoDateFolders = m_copiesIntoDateFolders;
    if (!m_sourceURL.isEmpty()) request.source = m_sourceURL;
    return request;
}

void LibraryViewModel::runCopy(const std::optional<CopyService::Export>& exportAs,
                               const std::optional<SharePicker::Anchor>& sharingFrom) {
    auto request = copyRequest(exportAs, sharingFrom.has_value());
    // The folder chooser may have stayed open while a copy began or the marks went.
    if (isCopying() || request.items.empty() || isDeleting()) return;
    const Change change{*this};
    assign(Property::copyInterruption, m_copyInterruption, {});
    m_copyStop = std::stop_source{};
    m_copyExport = exportAs;
    m_copyJob = {{}, m_sourceURL, request.destination, request.verifies, sharingFrom};
    for (const auto& item : exportAs ? m_exportItems : request.items) m_copyJob.photos.push_back(item.url);
    assign(Property::copyState, m_copyState, CopyState{beginning(request.items)});
    carryOut(std::move(request));
}

void LibraryViewModel::carryOut(CopyService::PlanRequest request) {
    CopyService::Ratings starred;
    for (const auto& item : request.items) {
        if (const auto stars = rating(item.url); stars > Rating{}) starred.emplace(item.url, stars);
    }
    // The report comes last, so it is the newest for good.
    const NewestValue<CopyState> published{m_services.main,
                                           [this, alive = std::weak_ptr{m_lifetime}](const CopyState& state) {
                                               if (!alive.expired()) publishCopy(state);
                                           }};
    const auto isForSharing = m_copyJob.sharingFrom.has_value();
    m_services.background.post([this, alive = std::weak_ptr{m_lifetime}, &copier = m_services.copier,
                                &files = m_services.files, &main = m_services.main,
                                makeFolder = isForSharing ? m_services.makeShareFolder : nullptr,
                                stop = m_copyStop.get_token(), published, request = std::move(request),
                                starred = std::move(starred)]() mutable {
        if (makeFolder) {
            auto folder = makeFolder();
            if (!folder) return published.send(CopyFailed{message(folder.error())});
            request.destination = std::move(*folder);
        }
        const auto plans = copier.plan(request, stop);
        if (!plans) {
            // Stopped before the first file is stopped all the same.
            published.send(stop.stop_requested() ? CopyState{cancelledReport(request.destination)}
                                                 : CopyFailed{message(plans.error())});
            return;
        }
        auto report = copier.copy(*plans, request.destination, starred, stop,
                                  [&](const CopyService::Progress& progress) { published.send(progress); });
        if (!request.exportAs) { // a picture made of a photo stands for no copy of it
            main.post([this, alive, source = request.source,
                       copied = copiedItems(files, request.items, *plans, report)] {
                if (!alive.expired() && source == m_sourceURL) noteCopied(copied);
            });
        }
        published.send(std::move(report));
    });
}

void LibraryViewModel::publishCopy(const CopyState& state) {
    const Change change{*this};
    assign(Property::copyState, m_copyState, state);
    const auto* report = std::get_if<CopyService::Report>(&state);
    if (!report) return;
    if (report->copied > 0) {
        m_services.analytics.record(
            PhotosCopied{.count = report->copied, .withPreset = m_copyExport.has_value()});
    }
    handOver(*report);
}

void LibraryViewModel::cancelCopy() {
    if (isCopying() && m_copyStop.request_stop()) didChange(Property::copyState);
}

void LibraryViewModel::interruptCopy(const FileURL& removedVolume) {
    // The first volume that goes is the reason; others may go with the same plug.
    if (!isCopying() || !m_copyInterruption.empty()) return;
    const auto wentWithIt = [&](const FileURL& folder) {
        return !folder.isEmpty() && folder.isContained(removedVolume);
    };
    if (wentWithIt(m_copyJob.source)) {
        m_copyInterruption = localized("The card was removed during the copy. Files that finished are "
                                       "complete; reinsert the card, mark the "
                                       "photos and copy again — files already copied are skipped.");
    } else if (wentWithIt(m_copyJob.destination)) {
        m_copyInterruption =
            localized("The destination drive was disconnected during the copy. Reconnect it and "
                      "copy again — files already copied are skipped.");
    } else {
        return;
    }
    didChange(Property::copyInterruption);
    cancelCopy();
}

void LibraryViewModel::dismissCopy() {
    if (isCopying()) return;
    m_copyJob = {};
    m_exportItems.clear();
    m_pendingExportLook.reset();
    m_copyExport.reset();
    assign(Property::copyState, m_copyState, CopyState{});
}

bool LibraryViewModel::copiedMarkedPhotos() const {
    return std::any_of(m_copyJob.photos.begin(), m_copyJob.photos.end(),
                       [this](const FileURL& photo) { return isChecked(photo); });
}

void LibraryViewModel::unmarkCopiedPhotos() {
    const Change change{*this};
    for (const auto& photo : m_copyJob.photos) {
        if (const auto position = m_index->find(photo, *m_items)) m_checked.setChecked(*position, false);
    }
    didChange(Property::checkedIDs);
    if (m_showsOnlyChecked) updateVisibleItems();
}

} // namespace kelvara
