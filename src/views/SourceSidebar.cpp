#include "views/SourceSidebar.h"

#include "platform/Desktop.h"
#include "text/ByteCount.h"
#include "views/SidebarFooter.h"
#include "views/SidebarRow.h"
#include "views/Text.h"

#include <QMenu>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace kelvara {

SourceSidebar::SourceSidebar(LibraryViewModel& library, Desktop& desktop, QWidget* parent)
    : Panel{&Theme::panel, parent}, m_library{library}, m_desktop{desktop} {
    setMinimumWidth(200);
    auto* area = new QScrollArea{this};
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->viewport()->setAutoFillBackground(false);
    m_list = new QWidget;
    m_list->setAccessibleName(tr("Sources"));
    m_column = new QVBoxLayout{m_list};
    m_column->setContentsMargins(spacing::small, spacing::medium, spacing::small, spacing::small);
    m_column->setSpacing(1);
    area->setWidget(m_list);
    m_list->setAutoFillBackground(false); // setWidget has turned it on

    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(area, 1);
    auto* footer = new SidebarFooter{this};
    connect(footer, &SidebarFooter::folderRequested, this, [this] { m_library.chooseFolder(); });
    connect(footer, &SidebarFooter::supportRequested, this, &SourceSidebar::supportRequested);
    column->addWidget(footer);

    using P = LibraryProperty;
    m_subscriptions.push_back(
        m_library.observe({P::volumes, P::availableRecentFolders}, [this](const auto&) { rebuild(); }));
    m_subscriptions.push_back(
        m_library.observe({P::sourceURL, P::ejectingVolumeID}, [this](const auto&) { markCurrent(); }));
    rebuild();
}

void SourceSidebar::rebuild() {
    const auto focused =
        std::ranges::find_if(m_entries, [](const Entry& entry) { return entry.row->hasFocus(); });
    const auto focusedSource = focused == m_entries.end() ? FileURL{} : focused->source;
    while (auto* item = m_column->takeAt(0)) {
        // Later, as the click that led here may still be in one of them.
        if (item->widget()) item->widget()->hide(), item->widget()->deleteLater();
        delete item;
    }
    m_entries.clear();
    const auto addVolumes = [this](const QString& title, bool removable) {
        const auto& volumes = m_library.volumes();
        const auto belongs = [removable](const VolumeInfo& volume) {
            return volume.isRemovable == removable;
        };
        if (std::none_of(volumes.begin(), volumes.end(), belongs)) return;
        addHeading(title);
        for (const auto& volume : volumes) {
            if (belongs(volume)) addVolume(volume);
        }
    };
    addVolumes(tr("Cards"), true);
    addVolumes(tr("Volumes"), false);
    if (!m_library.availableRecentFolders().empty()) {
        addHeading(tr("Recent Folders"));
        for (const auto& folder : m_library.availableRecentFolders()) addRecentFolder(folder);
    }
    m_column->addStretch(1);
    markCurrent();
    if (focusedSource.isEmpty()) return;
    for (const auto& entry : m_entries) {
        if (entry.source == focusedSource) entry.row->setFocus(Qt::OtherFocusReason);
    }
}

void SourceSidebar::addHeading(const QString& title) {
    if (m_column->count() > 0) m_column->addSpacing(spacing::large);
    auto* heading = makeLabel(TextRole::section, Tone::quiet, m_list, title);
    heading->setContentsMargins(spacing::small, 0, 0, spacing::tiny);
    m_column->addWidget(heading);
}

void SourceSidebar::addVolume(const VolumeInfo& volume) {
    const auto detail = volume.availableCapacity
                            ? tr("%1 free").arg(text(byteCountText(*volume.availableCapacity)))
                            : QString{};
    const auto symbolName = volume.isRemovable ? QStringLiteral("sdcard") : QStringLiteral("externaldrive");
    auto* row = new VolumeRow{symbolName, text(volume.name), detail, volume.url.path() != "/", m_list};
    row->setToolTip(pathText(volume.url));
    connect(row, &SidebarRow::clicked, this, [this, id = volume.url] { m_library.selectVolume(id); });
    connect(row, &VolumeRow::ejectRequested, this, [this, volume] { m_library.eject(volume); });
    addRow({row, volume.preferredSourceURL, volume.url});
}

void SourceSidebar::addRecentFolder(const FileURL& folder) {
    auto* row = new SidebarRow{QStringLiteral("folder"), nameText(folder), {}, m_list};
    row->setToolTip(pathText(folder));
    row->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(row, &SidebarRow::clicked, this, [this, folder] { m_library.openRecentFolder(folder); });
    connect(row, &QWidget::customContextMenuRequested, this, [this, row, folder](const QPoint& position) {
        auto* menu = new QMenu{this};
        menu->setAttribute(Qt::WA_DeleteOnClose);
        menu->addAction(tr("Show in Finder"), this, [this, folder] { m_desktop.showInFileManager(folder); });
        menu->addAction(tr("Remove from Recents"), this,
                        [this, folder] { m_library.removeRecentFolder(folder); });
        menu->popup(row->mapToGlobal(position));
    });
    addRow({row, folder, {}});
}

void SourceSidebar::addRow(const Entry& entry) {
    m_column->addWidget(entry.row);
    m_entries.append(entry);
    entry.row->show();
}

void SourceSidebar::markCurrent() {
    for (const auto& entry : m_entries) {
        entry.row->setCurrent(entry.source == m_library.sourceURL());
        if (auto* volume = qobject_cast<VolumeRow*>(entry.row)) {
            volume->setEjecting(entry.volumeID == m_library.ejectingVolumeID());
        }
    }
}

} // namespace kelvara
