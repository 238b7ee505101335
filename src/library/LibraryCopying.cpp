// LibraryViewModel: copying the marked files.

#include "async/NewestValue.h"
#include "library/CopiedItems.h"
#include "library/LibraryViewModel.h"
#include "library/PreferenceKeys.h"
#include "platform/AnalyticsClient.h"
#include "platform/Desktop.h"
#include "platform/FolderChooser.h"
#include "platform/Preferences.h"
#include "text/Localized.h"

#include <algorithm>

namespace kelvara {

namespace {

CopyService::Report cancelledReport(const FileURL& destination) {
    CopyService::Report report;
    report.destination = destination;
    report.wasCancelled = true;
    return report;
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
    static_cast<void>(exportAs);
    static_cast<void>(sharingFrom);
    if (isCopying()) return;
    if (m_checked.empty() || isDeleting()) { // a file that goes can't be copied
        m_services.desktop.beep();
        return;
    }
    if (m_copyDestination.isEmpty()) {
        chooseCopyDestination([this] { runCopy(); });
    } else {
        runCopy();
    }
}

CopyService::PlanRequest LibraryViewModel::copyRequest() const {
    CopyService::PlanRequest request{.items = {},
                                     .destination = m_copyDestination,
                                     .source = std::nullopt,
                                     .intoDateFolders = m_copiesIntoDateFolders,
                                     .verifies = m_verifiesCopies};
    request.items.reserve(m_checked.size());
    for (const auto position : m_sortedPositions) {
        if (m_checked.isChecked(position)) request.items.push_back((*m_items)[position]);
    }
    if (!m_sourceURL.isEmpty()) request.source = m_sourceURL;
    return request;
}

void LibraryViewModel::runCopy() {
    // The folder chooser may have stayed open while a copy began or the marks went.
    if (isCopying() || m_checked.empty() || isDeleting()) return;
    const Change change{*this};
    assign(Property::copyInterruption, m_copyInterruption, {});
    m_copyStop = std::stop_source{};
    m_copyJob = {m_checked, m_sourceURL, m_copyDestination, m_verifiesCopies};
    // What is known before the plan is made, which takes a while for many files.
    CopyService::Progress beginning;
    beginning.totalFiles = static_cast<std::int64_t>(m_checked.size());
    beginning.totalBytes = m_checked.bytes();
    assign(Property::copyState, m_copyState, CopyState{beginning});

    auto request = copyRequest();
    CopyService::Ratings starred;
    for (const auto& item : request.items) {
        if (const auto stars = rating(item.url); stars > Rating{}) starred.emplace(item.url, stars);
    }
    // The report comes last, so it is the newest for good.
    const NewestValue<CopyState> published{m_services.main,
                                           [this, alive = std::weak_ptr{m_lifetime}](const CopyState& state) {
                                               if (!alive.expired()) publishCopy(state);
                                           }};
    m_services.background.post([this, alive = std::weak_ptr{m_lifetime}, &copier = m_services.copier,
                                &files = m_services.files, &main = m_services.main,
                                stop = m_copyStop.get_token(), published, request = std::move(request),
                                starred = std::move(starred)] {
        const auto plans = copier.plan(request, stop);
        if (!plans) {
            // Stopped before the first file is stopped all the same.
            published.send(stop.stop_requested() ? CopyState{cancelledReport(request.destination)}
                                                 : CopyFailed{message(plans.error())});
            return;
        }
        auto report = copier.copy(*plans, request.destination, starred, stop,
                                  [&](const CopyService::Progress& progress) { published.send(progress); });
        main.post([this, alive, source = request.source,
                   copied = copiedItems(files, request.items, *plans, report)] {
            if (!alive.expired() && source == m_sourceURL) noteCopied(copied);
        });
        published.send(std::move(report));
    });
}

void LibraryViewModel::publishCopy(const CopyState& state) {
    const auto* report = std::get_if<CopyService::Report>(&state);
    if (report && report->copied > 0) m_services.analytics.record(PhotosCopied{.count = report->copied});
    assign(Property::copyState, m_copyState, state);
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
