// LibraryViewModel: copying the marked files.

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

void LibraryViewModel::startCopy() {
    if (std::holds_alternative<CopyService::Progress>(m_copyState)) return;
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

void LibraryViewModel::runCopy() {
    // The folder chooser may have stayed open while a copy began or the marks went.
    if (std::holds_alternative<CopyService::Progress>(m_copyState) || m_checked.empty() || isDeleting())
        return;
    const Change change{*this};
    assign(Property::copyInterruption, m_copyInterruption, {});
    assign(Property::copyState, m_copyState, CopyState{CopyService::Progress{}});

    CopyService::PlanRequest request{.items = {},
                                     .destination = m_copyDestination,
                                     .source = std::nullopt,
                                     .intoDateFolders = m_copiesIntoDateFolders};
    CopyService::Ratings starred;
    for (const auto position : m_sortedPositions) {
        if (!m_checked.isChecked(position)) continue;
        const auto& item = (*m_items)[position];
        request.items.push_back(item);
        if (const auto stars = rating(item.url); stars > Rating{}) starred.emplace(item.url, stars);
    }
    if (!m_sourceURL.isEmpty()) request.source = m_sourceURL;

    m_copyStop = std::stop_source{};
    m_services.background.post([this, alive = std::weak_ptr{m_lifetime}, &copier = m_services.copier,
                                &files = m_services.files, &main = m_services.main,
                                stop = m_copyStop.get_token(), request = std::move(request),
                                starred = std::move(starred)] {
        const auto publish = [&](CopyState state) {
            main.post([this, alive, state = std::move(state)] {
                if (!alive.expired()) publishCopy(state);
            });
        };
        const auto plans = copier.plan(request, stop);
        if (!plans) {
            // Stopped before the first file is stopped all the same.
            const bool wasCancelled = std::holds_alternative<CopyService::Cancelled>(plans.error());
            publish(wasCancelled ? CopyState{cancelledReport(request.destination)}
                                 : CopyFailed{message(plans.error())});
            return;
        }
        const auto report = copier.copy(*plans, request.destination, starred, stop, publish);
        main.post([this, alive, source = request.source, copied = copiedItems(files, request.items, *plans)] {
            if (!alive.expired() && source == m_sourceURL) noteCopied(copied);
        });
        publish(report);
    });
}

void LibraryViewModel::publishCopy(const CopyState& state) {
    const auto* report = std::get_if<CopyService::Report>(&state);
    if (report && report->copied > 0) m_services.analytics.record(PhotosCopied{.count = report->copied});
    assign(Property::copyState, m_copyState, state);
}

void LibraryViewModel::cancelCopy() { m_copyStop.request_stop(); }

void LibraryViewModel::dismissCopy() {
    if (!std::holds_alternative<CopyService::Progress>(m_copyState))
        assign(Property::copyState, m_copyState, CopyState{});
}

} // namespace kelvara
