#include "views/ClosingSheet.h"

#include "library/LibraryViewModel.h"
#include "views/RootView.h"
#include "views/Sheet.h"

#include <QGuiApplication>
#include <QPushButton>

namespace kelvara {

ClosingSheet::ClosingSheet(LibraryViewModel& library, Sheet& sheet, RootView& window)
    : QObject{&window}, m_library{library}, m_sheet{sheet}, m_window{window} {
    m_subscription =
        library.observe({LibraryProperty::copyState}, [this](const auto&) { copyMayHaveEnded(); });
    // A session that ends closes the window a moment later, and doesn't wait for an answer.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { m_asks = false; }, Qt::DirectConnection);
}

bool ClosingSheet::canClose() {
    if (!m_library.isCopying()) return true;
    if (!m_asks) {
        closeSoon();
    } else if (!m_isClosing && !m_sheet.isVisible()) {
        ask();
    }
    return false;
}

void ClosingSheet::ask() {
    m_window.bringToFront(); // it may be closed from the desktop's list of windows
    const auto isExport = m_library.copyExport().has_value();
    auto* question =
        isExport
            ? new AlertView{tr("Stop Exporting and Quit?"),
                            tr("The photos in progress finish first."),
                            {tr("Stop and Quit"), tr("Keep Exporting")}}
            : new AlertView{tr("Stop Copying and Quit?"),
                            tr("The files in progress finish first, so that nothing is left half-copied."),
                            {tr("Stop and Quit"), tr("Keep Copying")}};
    m_sheet.present(question);
    m_sheet.setButtons(question->defaultButton(), question->defaultButton());
    connect(question->defaultButton(), &QPushButton::clicked, &m_sheet, &Sheet::dismiss);
    connect(question->otherButton(), &QPushButton::clicked, this, &ClosingSheet::closeSoon);
}

void ClosingSheet::closeSoon() {
    m_isClosing = true;
    m_sheet.dismiss();
    m_library.cancelCopy();
    copyMayHaveEnded();
}

void ClosingSheet::copyMayHaveEnded() {
    if (m_library.isCopying()) return;
    m_sheet.dismiss();
    // Later, when everybody has been told that the copy ended.
    if (m_isClosing) QMetaObject::invokeMethod(&m_window, &QWidget::close, Qt::QueuedConnection);
}

} // namespace kelvara
