#include "views/KeyboardShortcutsView.h"

#include "views/Controls.h"

#include <QGridLayout>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace kelvara {

std::vector<ShortcutGroup> KeyboardShortcutsView::groups() {
    return {
        {tr("Browse"),
         {{tr("← → ↑ ↓"), tr("Move between photos")},
          {tr("Space"), tr("Grid ⇄ Single Image")},
          {tr("Esc"), tr("Back to the grid")},
          {tr("⌘F"), tr("Search file names")}}},
        {tr("Cull"),
         {{tr("S  ↩"), tr("Mark / unmark for copy")},
          {tr("⇧-click"), tr("Mark every photo up to this one")},
          {tr("1 – 5"), tr("Set star rating")},
          {tr("0"), tr("Clear rating")},
          {tr("⌘↩"), tr("Copy marked files")},
          {tr("⌘⌫"), tr("Delete (all marked, if this photo is marked)")}}},
        {tr("Single Image"),
         {{tr("Z"), tr("Fit ⇄ 100%")},
          {tr("⌘+  ⌘−  ⌘0"), tr("Zoom in / out / to fit")},
          {tr("⌘- or ⌥-scroll"), tr("Zoom around the pointer")},
          {tr("I  E  P"), tr("Info / Edit / Presets sidebar")},
          {tr("[  ]"), tr("Previous / next preset")},
          {tr("\\"), tr("Preset before / after")},
          {tr("H"), tr("Hide / show the overlays")}}},
        {tr("Edit"),
         {{tr("⌘⇧C  ⌘⇧V"), tr("Copy / paste edits")}, {tr("Double-click"), tr("Reset a slider")}}},
    };
}

KeyboardShortcutsView::KeyboardShortcutsView(QWidget* mainWindow)
    : SideWindow{tr("Keyboard Shortcuts"), mainWindow} {
    auto* table = new QWidget;
    auto* grid = new QGridLayout{table};
    grid->setContentsMargins(spacing::huge, spacing::large, spacing::huge, spacing::huge);
    grid->setHorizontalSpacing(spacing::huge);
    grid->setVerticalSpacing(spacing::small - 2);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const auto& group : groups()) {
        auto* title = makeLabel(TextRole::headline, Tone::normal, table, group.title);
        title->setContentsMargins(0, row == 0 ? 0 : spacing::large, 0, spacing::tiny);
        grid->addWidget(title, row++, 0, 1, 2);
        for (const auto& [keys, description] : group.rows) {
            grid->addWidget(makeLabel(TextRole::emphasis, Tone::normal, table, keys), row, 0);
            grid->addWidget(makeLabel(TextRole::body, Tone::quiet, table, description), row++, 1);
        }
    }

    auto* area = new QScrollArea{this};
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->viewport()->setAutoFillBackground(false);
    area->setWidget(table);
    table->setAutoFillBackground(false); // setWidget has turned it on
    area->setMinimumWidth(table->sizeHint().width() + area->verticalScrollBar()->sizeHint().width());
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(area);
    constexpr int decoration = 60; // of the window, and some air
    const auto room = mainWindow->screen()->availableSize().height() - decoration;
    resize(area->minimumWidth(), std::min(table->sizeHint().height(), room));
}

} // namespace kelvara
