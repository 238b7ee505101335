#include "views/PresetImportView.h"

#include "views/SelectableText.h"
#include "views/SheetParts.h"
#include "views/Text.h"

#include <QBoxLayout>
#include <QListWidget>
#include <QPushButton>

#include <algorithm>

namespace kelvara {

namespace {

constexpr int listHeight = 168;

QString tr(const char* text) { return PresetImportView::tr(text); }

QString counted(std::size_t count, const char* one, const char* many) {
    return count == 1 ? tr(one) : tr(many).arg(countText(static_cast<std::int64_t>(count)));
}

/// Every file that was refused, with its reason; scrolls when there are many.
QListWidget* makeProblemList(const std::vector<std::string>& problems, QWidget* parent) {
    auto* list = new QListWidget{parent};
    list->setObjectName(QStringLiteral("failures"));
    list->setFont(kelvara::font(TextRole::caption));
    list->setWordWrap(true);
    list->setSpacing(3);
    list->setTextElideMode(Qt::ElideMiddle);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setFocusPolicy(Qt::TabFocus);
    list->setAccessibleName(tr("Files that were not imported"));
    for (const auto& problem : problems) list->addItem(text(problem));
    // Two lines each, of which many need one.
    const auto line = list->fontMetrics().height();
    const auto wanted = static_cast<int>(std::min<std::size_t>(problems.size(), 100)) * (2 * line + 6) + 16;
    list->setFixedHeight(std::min(wanted, listHeight));
    return list;
}

} // namespace

PresetImportTexts presetImportTexts(const PresetImportReport& report, const QString& error) {
    PresetImportTexts texts;
    const auto imported = report.imported.size();
    QStringList notes;
    if (imported > 0) {
        texts.title = counted(imported, QT_TRANSLATE_NOOP("kelvara::PresetImportView", "1 Preset Imported"),
                              QT_TRANSLATE_NOOP("kelvara::PresetImportView", "%1 Presets Imported"));
    } else if (report.wasCancelled) {
        texts.title = tr("Import Stopped");
    } else {
        texts.title = report.alreadyThere > 0 ? tr("Nothing New") : tr("No Presets Imported");
    }
    if (!error.isEmpty()) notes.append(error);
    if (report.wasCancelled && imported > 0)
        notes.append(tr("The import was stopped; the others stayed out."));
    if (report.alreadyThere > 0) {
        notes.append(
            counted(report.alreadyThere,
                    QT_TRANSLATE_NOOP("kelvara::PresetImportView", "1 preset was there already."),
                    QT_TRANSLATE_NOOP("kelvara::PresetImportView", "%1 presets were there already.")));
    }
    if (!report.problems.empty()) {
        notes.append(counted(report.problems.size(),
                             QT_TRANSLATE_NOOP("kelvara::PresetImportView", "1 file was not imported:"),
                             QT_TRANSLATE_NOOP("kelvara::PresetImportView", "%1 files were not imported:")));
    }
    texts.note = notes.join(u'\n');
    texts.wentWell = error.isEmpty() && report.problems.empty() && !report.foundNone();
    return texts;
}

PresetImportView::PresetImportView(const PresetImportReport& report, const QString& error, QWidget* parent)
    : QWidget{parent} {
    const auto& theme = Theme::current();
    const auto texts = presetImportTexts(report, error);
    m_done = SheetParts::makeButton(tr("Done"), this);
    auto* column = SheetParts::makeColumn(this);
    column->setSpacing(spacing::medium);
    column->addLayout(
        SheetParts::makeHeading(texts.wentWell ? u"checkmark.circle.fill" : u"exclamationmark.triangle.fill",
                                texts.wentWell ? theme.mark : theme.warning, texts.title, this));
    if (!texts.note.isEmpty()) column->addWidget(SheetParts::makeParagraph(texts.note, this));
    if (!report.problems.empty()) column->addWidget(makeProblemList(report.problems, this));
    column->addSpacing(spacing::small);
    column->addWidget(m_done, 0, Qt::AlignRight);
}

} // namespace kelvara
