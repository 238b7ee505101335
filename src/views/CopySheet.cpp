#include "views/CopySheet.h"

#include "library/SharingController.h"
#include "platform/Desktop.h"
#include "views/ExportOptionsView.h"
#include "views/ShareMenuItems.h"
#include "views/Sheet.h"
#include "views/Text.h"

#include <chrono>
#include <type_traits>

namespace kelvara {

namespace {
constexpr std::chrono::milliseconds pause{50};
} // namespace

CopySheet::CopySheet(LibraryViewModel& library, Desktop& desktop, SharingController& sharing, Sheet& sheet,
                     QObject* parent)
    : QObject{parent}, m_library{library}, m_desktop{desktop}, m_sharing{sharing}, m_sheet{sheet} {
    m_pause.setSingleShot(true);
    m_pause.setInterval(pause);
    connect(&m_pause, &QTimer::timeout, this, [this] {
        if (m_library.isCopying()) refresh();
    });
    m_subscription = m_library.observe({LibraryProperty::copyState}, [this](const auto&) { stateChanged(); });
    refresh();
}

void CopySheet::stateChanged() {
    // Thousands of small files a second would keep the window busy with drawing what nobody can read.
    if (m_library.isCopying() && !m_library.isStoppingCopy()) {
        if (m_pause.isActive()) return;
        m_pause.start();
    }
    refresh();
}

void CopySheet::refresh() {
    std::visit(
        [this](const auto& state) {
            using State = std::decay_t<decltype(state)>;
            if constexpr (std::is_same_v<State, CopyIdle>) m_sheet.dismiss();
            if constexpr (std::is_same_v<State, ConfiguringExport>) showOptions();
            if constexpr (std::is_same_v<State, CopyService::Progress>) showProgress(state);
            if constexpr (std::is_same_v<State, CopyService::Report>) showReport(state);
            if constexpr (std::is_same_v<State, CopyFailed>) showFailure(state);
        },
        m_library.copyState());
}

void CopySheet::showOptions() {
    auto* view = new ExportOptionsView{m_library};
    m_sheet.present(view);
    m_sheet.setButtons(view->exportButton(), view->cancelButton());
    connect(view->cancelButton(), &QPushButton::clicked, this, [this] { m_library.dismissCopy(); });
    connect(view->exportButton(), &QPushButton::clicked, this,
            [this, view] { m_library.startCopy(view->job()); });
    connect(view->shareButton(), &QPushButton::clicked, this,
            [this, view] { m_library.startCopy(view->job(), shareAnchor(*view->shareButton())); });
}

void CopySheet::showProgress(const CopyService::Progress& progress) {
    if (!m_progress || m_sheet.content() != m_progress) {
        m_progress = new CopyProgressView;
        m_sheet.present(m_progress);
        m_sheet.setButtons(nullptr, m_progress->cancelButton());
        connect(m_progress->cancelButton(), &QPushButton::clicked, this, [this] { m_library.cancelCopy(); });
    }
    if (m_library.isStoppingCopy()) m_progress->setStopping();
    m_progress->show(progress, copyKind(m_library));
}

void CopySheet::showReport(const CopyService::Report& report) {
    auto* view = new CopyReportView{report, m_library};
    m_sheet.present(view);
    m_sheet.setButtons(view->doneButton(), view->doneButton());
    connect(view->doneButton(), &QPushButton::clicked, this, [this] { m_library.dismissCopy(); });
    connect(view->showButton(), &QPushButton::clicked, this,
            [this, folder = report.destination] { m_desktop.showInFileManager(folder); });
    if (view->shareButton()) {
        connect(view->shareButton(), &QPushButton::clicked, this,
                [this, view, files = report.exported] { share(files, shareAnchor(*view->shareButton())); });
    }
    if (!view->clearButton()) return;
    connect(view->clearButton(), &QPushButton::clicked, this, [this, view] {
        m_library.unmarkCopiedPhotos();
        if (view->clearButton()->hasFocus()) view->doneButton()->setFocus();
        view->clearButton()->setEnabled(false);
    });
}

void CopySheet::share(const std::vector<FileURL>& files, const SharePicker::Anchor& anchor) {
    const auto& job = m_library.copyExport();
    m_sharing.shareFiles(files, anchor, job && job->settings.appliesLook ? job->look : std::nullopt);
}

void CopySheet::showFailure(const CopyFailed& failure) {
    auto* view = new CopyFailedView{text(failure.message)};
    m_sheet.present(view);
    m_sheet.setButtons(view->chooseButton(), view->cancelButton());
    connect(view->cancelButton(), &QPushButton::clicked, this, [this] { m_library.dismissCopy(); });
    connect(view->chooseButton(), &QPushButton::clicked, this, [this] {
        m_library.chooseCopyDestination([this] { m_library.startCopy(m_library.copyExport()); });
    });
}

} // namespace kelvara
