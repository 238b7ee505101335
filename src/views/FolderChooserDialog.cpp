#include "views/FolderChooserDialog.h"

#include "views/Controls.h"
#include "views/LocalURL.h"
#include "views/Text.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QSplitter>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

namespace kelvara {

namespace {

/// Adds what the desktop's dialogs don't have: below the list a sentence and a check box.
QCheckBox* addControls(QFileDialog& dialog, const FolderChooser::Request& request) {
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
    auto* box = new QCheckBox{text(request.checkBox), &dialog};
    box->setChecked(request.isChecked);
    auto* message = makeLabel(TextRole::body, Tone::quiet, &dialog, text(request.message));
    if (grid) {
        const auto row = grid->rowCount();
        grid->addWidget(message, row, 0, 1, -1);
        grid->addWidget(box, row + 1, 0, 1, -1);
        grid->setContentsMargins(spacing::large, spacing::large, spacing::large, spacing::large);
    }
    for (const auto* unneeded : {"fileTypeLabel", "fileTypeCombo"}) {
        if (auto* widget = dialog.findChild<QWidget*>(QLatin1StringView{unneeded})) widget->hide();
    }
    QList<QUrl> places;
    for (const auto place :
         {QStandardPaths::HomeLocation, QStandardPaths::PicturesLocation, QStandardPaths::DesktopLocation}) {
        places.append(QUrl::fromLocalFile(QStandardPaths::writableLocation(place)));
    }
    places.append(QUrl::fromLocalFile(QStringLiteral("/")));
    dialog.setSidebarUrls(places);
    dialog.setViewMode(QFileDialog::List);
    dialog.resize(820, 540);
    if (auto* splitter = dialog.findChild<QSplitter*>()) splitter->setSizes({180, 640});
    return box;
}

} // namespace

FolderChooserDialog::~FolderChooserDialog() {
    if (m_dialog) m_dialog->disconnect();
    delete m_dialog;
}

void FolderChooserDialog::choose(const Request& request, std::function<void(std::optional<Choice>)> onEnd) {
    if (m_dialog) m_dialog->reject();
    m_dialog = new QFileDialog{m_window};
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setFileMode(QFileDialog::Directory);
    m_dialog->setOption(QFileDialog::ShowDirsOnly);
    m_dialog->setOption(QFileDialog::ReadOnly, !request.canCreateFolders);
    m_dialog->setLabelText(QFileDialog::Accept, text(request.prompt));
    m_dialog->setWindowTitle(request.message.empty() ? text(request.prompt) : text(request.message));
    auto* box = request.checkBox.empty() ? nullptr : addControls(*m_dialog, request);
    if (!request.startFolder.isEmpty()) m_dialog->setDirectoryUrl(toQUrl(request.startFolder));

    QObject::connect(m_dialog, &QDialog::finished, m_dialog,
                     [dialog = m_dialog, box, onEnd = std::move(onEnd)](int result) {
                         const auto chosen = dialog->selectedUrls();
                         if (result != QDialog::Accepted || chosen.isEmpty() ||
                             !chosen.first().isLocalFile()) {
                             return onEnd(std::nullopt);
                         }
                         onEnd(Choice{fromQUrl(chosen.first()), box && box->isChecked()});
                     });
    m_dialog->open();
}

} // namespace kelvara
