#include "views/PresetInspector.h"

#include "views/BusyIndicator.h"
#include "views/DropFrame.h"
#include "views/PresetImportDialog.h"
#include "views/PresetStrengthView.h"
#include "views/SearchLine.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDragEnterEvent>
#include <QMenu>
#include <QStackedLayout>

#include <algorithm>

namespace kelvara {

PresetInspector::PresetInspector(LibraryViewModel& library, PresetStore& presets,
                                 ThumbnailService& thumbnails, PresetTileService& tiles, QWidget* parent)
    : Panel{&Theme::panel, parent}, m_presets{presets} {
    setAcceptDrops(true);
    m_search = new SearchLine{tr("Search presets"), this};
    connect(m_search, &SearchLine::searched, this,
            [this](const QString& words) { m_presets.setSearchText(utf8(words)); });
    m_list = new PresetListView{library, presets, thumbnails, tiles, this};
    connect(m_list, &PresetListView::importRequested, this, &PresetInspector::filesRequested);
    connect(m_list, &PresetListView::removalRequested, this, &PresetInspector::removalRequested);

    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->setSpacing(0);
    auto* search = new QHBoxLayout;
    search->setContentsMargins(spacing::medium, spacing::tiny, spacing::medium, spacing::small);
    search->addWidget(m_search);
    column->addLayout(search);
    column->addWidget(makeList(), 1);
    column->addWidget(new PresetStrengthView{presets, this});
    column->addWidget(makeFooter());
    m_dropFrame = new DropFrame{this};

    using P = PresetProperty;
    m_subscriptions.push_back(
        m_presets.observe({P::searchText, P::visibleCategories}, [this](const auto&) { refreshList(); }));
    m_subscriptions.push_back(
        m_presets.observe({P::isImporting, P::showsPreviews}, [this](const auto&) { refreshImport(); }));
    m_subscriptions.push_back(m_presets.observe({P::importReport}, [this](const auto&) {
        const auto& report = m_presets.importReport();
        if (report && !report->imported.empty()) m_list->reveal(report->imported.front());
    }));
    refreshList();
    refreshImport();
}

QWidget* PresetInspector::makeList() {
    auto* pages = new QWidget{this};
    m_pages = new QStackedLayout{pages};
    m_pages->addWidget(m_list);
    m_noMatches = makeLabel(TextRole::body, Tone::quiet, pages);
    m_noMatches->setWordWrap(true);
    m_noMatches->setAlignment(Qt::AlignCenter);
    m_noMatches->setContentsMargins(spacing::huge, 0, spacing::huge, 0);
    m_pages->addWidget(m_noMatches);
    return pages;
}

QWidget* PresetInspector::makeFooter() {
    auto* footer = new QWidget{this};
    m_shows = new QCheckBox{tr("Show on Photo"), footer};
    m_shows->setFont(kelvara::font(TextRole::caption));
    m_shows->setFocusPolicy(Qt::TabFocus);
    m_shows->setToolTip(tr("Show the single image through the preset"));
    connect(m_shows, &QCheckBox::toggled, this, [this](bool shows) { m_presets.setShowsPreviews(shows); });
    m_hint =
        makeLabel(TextRole::detail, Tone::quiet, footer,
                  tr("Lightroom presets that you import (.xmp, .lrtemplate or .zip) appear in the list."));
    m_hint->setWordWrap(true);
    m_progress = makeProgress(footer);

    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::small);
    row->addWidget(m_shows);
    row->addStretch(1);
    row->addWidget(makeImportButton(footer));
    auto* column = new QVBoxLayout{footer};
    column->setContentsMargins(spacing::medium, 0, spacing::medium, spacing::small);
    column->setSpacing(spacing::small);
    column->addLayout(row);
    column->addWidget(m_hint);
    column->addWidget(m_progress);
    return footer;
}

QWidget* PresetInspector::makeImportButton(QWidget* parent) {
    auto* button = makeIconButton(u"plus", tr("Import Presets"), tr("Import Lightroom presets"), parent);
    button->setText(tr("Import"));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFont(kelvara::font(TextRole::caption));
    setSymbol(*button, symbolIcon(u"plus", &Theme::text), 14);
    auto* menu = new QMenu{button};
    menu->addAction(tr("Import Files…"), this, &PresetInspector::filesRequested);
    menu->addAction(tr("Import Folder…"), this, &PresetInspector::folderRequested);
    button->setMenu(menu);
    button->setPopupMode(QToolButton::InstantPopup);
    return button;
}

QWidget* PresetInspector::makeProgress(QWidget* parent) {
    auto* progress = new QWidget{parent};
    auto* row = new QHBoxLayout{progress};
    row->setContentsMargins({});
    row->setSpacing(spacing::small);
    row->addWidget(new BusyIndicator{16, progress});
    row->addWidget(makeLabel(TextRole::caption, Tone::quiet, progress, tr("Importing presets…")), 1);
    auto* cancel = makeIconButton(u"xmark.circle.fill", tr("Stop Importing"), tr("Stop importing"), progress);
    cancel->setIconSize({14, 14});
    connect(cancel, &QToolButton::clicked, this, [this] { m_presets.cancelImport(); });
    row->addWidget(cancel);
    return progress;
}

void PresetInspector::refreshList() {
    const auto& words = m_presets.searchText();
    m_search->showText(text(words));
    const auto isEmpty = m_presets.visibleCategories().empty();
    m_noMatches->setText(tr("No preset's name contains “%1”.").arg(text(words)));
    m_pages->setCurrentWidget(isEmpty && !words.empty() ? static_cast<QWidget*>(m_noMatches) : m_list);
    // A search may hide those that there are.
    if (words.empty()) m_hint->setVisible(!hasImportedPresets());
}

bool PresetInspector::hasImportedPresets() const {
    return std::ranges::any_of(m_presets.visibleCategories(), [this](const auto& category) {
        return std::ranges::any_of(category.presets,
                                   [this](const auto& preset) { return m_presets.isImported(preset->id); });
    });
}

void PresetInspector::refreshImport() {
    m_shows->setChecked(m_presets.showsPreviews());
    m_progress->setVisible(m_presets.isImporting());
}

void PresetInspector::dragEnterEvent(QDragEnterEvent* event) {
    // The window's own photos are on their way to another program.
    if (event->source() || presetSourcesAmong(droppedPaths(*event->mimeData())).empty())
        return event->ignore();
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_dropFrame->showOverParent();
}

void PresetInspector::dragLeaveEvent(QDragLeaveEvent*) { m_dropFrame->hide(); }

void PresetInspector::dropEvent(QDropEvent* event) {
    m_dropFrame->hide();
    auto sources = presetSourcesAmong(droppedPaths(*event->mimeData()));
    if (sources.empty()) return event->ignore();
    event->acceptProposedAction();
    m_presets.importPresets(std::move(sources));
}

} // namespace kelvara
