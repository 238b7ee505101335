#include "views/ShareMenuItems.h"

#include "library/LibraryViewModel.h"
#include "library/SharingController.h"
#include "presets/PresetStore.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QCoreApplication>
#include <QMenu>

#include <algorithm>
#include <functional>
#include <utility>

namespace kelvara {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ShareMenuItems)
};
QString tr(const char* source) { return Texts::tr(source); }

/// Only of a still image a new one can be made.
bool isStill(const PhotoItem& item) { return item.kind() && isStillImage(*item.kind()); }

} // namespace

void ShareMenuItems::addTo(QMenu& menu, const std::optional<SharePicker::Anchor>& anchor) const {
    const auto* focused = m_library.focusedItem();
    if (!focused) return;
    const auto photos = m_library.actionTargets(*focused);
    menu.setToolTipsVisible(true);
    addJPEGs(menu, photos, anchor);
    addOriginals(menu, photos, anchor);
    addExport(menu, photos);
}

void ShareMenuItems::addJPEGs(QMenu& menu, const std::vector<PhotoItem>& photos,
                              const std::optional<SharePicker::Anchor>& anchor) const {
    const auto now = look(photos);
    const auto size = QString::number(m_sharing.longEdge());
    const auto addEntry = [&](QStringView symbolName, const QString& title, const QString& help, auto act) {
        auto* entry = menu.addAction(menuIcon(symbolName), title, &menu, act);
        entry->setToolTip(help.arg(size));
        entry->setEnabled(std::ranges::any_of(photos, isStill));
    };
    addEntry(u"square.and.arrow.up.on.square", tr("Share as JPEGs"),
             now ? tr("Makes %1 px JPEG copies with the preset and each photo's edits applied (GPS removed) "
                      "and opens the share sheet")
                 : tr("Makes %1 px JPEG copies (GPS removed) and opens the share sheet"),
             [this, photos, now, anchor] { m_sharing.shareJPEGs(photos, now, anchor); });
    addEntry(u"dot.radiowaves.left.and.right", tr("AirDrop as JPEGs"),
             now ? tr("Makes %1 px JPEG copies with the preset and each photo's edits applied (GPS removed) "
                      "and sends them with AirDrop")
                 : tr("Makes %1 px JPEG copies (GPS removed) and sends them with AirDrop"),
             [this, photos, now] { m_sharing.airDropJPEGs(photos, now); });
}

void ShareMenuItems::addOriginals(QMenu& menu, const std::vector<PhotoItem>& photos,
                                  const std::optional<SharePicker::Anchor>& anchor) const {
    const auto title =
        photos.size() == 1
            ? tr("Share Original")
            : tr("Share %1 Originals").arg(countText(static_cast<std::int64_t>(photos.size())));
    menu.addAction(menuIcon(u"square.and.arrow.up"), title, &menu, [this, photos, anchor] {
        std::vector<FileURL> files;
        for (const auto& photo : photos) files.push_back(photo.url);
        m_sharing.shareFiles(std::move(files), anchor);
    });
}

void ShareMenuItems::addExport(QMenu& menu, const std::vector<PhotoItem>& photos) const {
    auto* entry = menu.addAction(withoutMnemonics(tr("Export & Share…")), &menu,
                                 [this, photos] { exportPhotos(photos); });
    entry->setToolTip(tr("Choose format, quality and size, then save the files to a folder or share them"));
    entry->setEnabled(std::ranges::any_of(photos, isStill) && !m_library.isCopying());
}

void ShareMenuItems::exportPhotos(std::vector<PhotoItem> photos) const {
    std::erase_if(photos, std::not_fn(isStill));
    auto now = look(photos);
    m_library.showExportOptions(std::move(photos), std::move(now));
}

std::optional<ExportLook> ShareMenuItems::look(const std::vector<PhotoItem>& photos) const {
    const auto preset = m_presets.selectedPreset();
    return ExportLook::of(preset ? std::optional{*preset} : std::nullopt, m_edits, photos);
}

SharePicker::Anchor shareAnchor(const QWidget& widget) {
    const auto corner = widget.mapToGlobal(QPoint{});
    return {corner.x(), corner.y(), widget.width(), widget.height()};
}

} // namespace kelvara
