#include "views/PresetImportDialog.h"

#include "model/MediaKind.h"
#include "presets/PresetFolder.h"
#include "views/LocalURL.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QString>

#include <algorithm>
#include <iterator>

namespace kelvara {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PresetImportDialog)
};

QFileDialog* makeDialog(QWidget& window, const QString& title,
                        std::function<void(std::vector<FileURL>)> onChosen) {
    auto* dialog = new QFileDialog{&window, title};
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setLabelText(QFileDialog::Accept, Texts::tr("Import"));
    QObject::connect(dialog, &QDialog::accepted, &window, [dialog, onChosen = std::move(onChosen)] {
        std::vector<FileURL> chosen;
        for (const auto& url : dialog->selectedUrls()) {
            if (url.isLocalFile()) chosen.push_back(fromQUrl(url));
        }
        onChosen(std::move(chosen));
    });
    return dialog;
}

bool isArchive(const FileURL& path) {
    const auto extension = path.extension();
    return QString::fromUtf8(extension.data(), static_cast<qsizetype>(extension.size()))
               .compare(u"zip", Qt::CaseInsensitive) == 0;
}

} // namespace

void choosePresetFiles(QWidget& window, std::function<void(std::vector<FileURL>)> onChosen) {
    auto* dialog = makeDialog(window, Texts::tr("Import Presets"), std::move(onChosen));
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters({Texts::tr("Lightroom presets and archives (%1)")
                                .arg(QStringLiteral("*.xmp *.lrtemplate *.zip *.XMP *.LRTEMPLATE *.ZIP"))});
    dialog->open();
}

void choosePresetFolder(QWidget& window, std::function<void(std::vector<FileURL>)> onChosen) {
    auto* dialog = makeDialog(window, Texts::tr("Import a Folder of Presets"), std::move(onChosen));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->open();
}

std::vector<FileURL> presetFilesAmong(const std::vector<FileURL>& paths) {
    std::vector<FileURL> files;
    std::ranges::copy_if(paths, std::back_inserter(files),
                         [](const FileURL& path) { return isPresetFile(path) || isArchive(path); });
    return files;
}

std::vector<FileURL> presetSourcesAmong(const std::vector<FileURL>& paths) {
    std::vector<FileURL> sources;
    std::ranges::copy_if(paths, std::back_inserter(sources),
                         [](const FileURL& path) { return !mediaKind(path.extension()); });
    return sources;
}

} // namespace kelvara
