#include "views/CopySheet.h"

#include "views/CopyFailureList.h"
#include "views/SelectableText.h"
#include "views/SheetParts.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QProgressBar>

#include <chrono>

namespace kelvara {

using namespace SheetParts;

namespace {

constexpr int barSteps = 10'000;

struct SymbolLook {
    QStringView symbolName;
    QColor Theme::*color;
};

SymbolLook headingLook(const CopyService::Report& report, bool wasInterrupted) {
    if (wasInterrupted || !report.failures.empty())
        return {u"exclamationmark.triangle.fill", &Theme::warning};
    // Nothing is wrong with what somebody wanted.
    if (report.wasCancelled) return {u"xmark.circle.fill", &Theme::secondaryText};
    return {u"checkmark.circle.fill", &Theme::mark};
}

SymbolLook look(CopyReportRow::Kind kind) {
    switch (kind) {
    case CopyReportRow::Kind::copied:
        return {u"photo", &Theme::secondaryText};
    case CopyReportRow::Kind::skipped:
        return {u"doc.on.doc", &Theme::secondaryText};
    case CopyReportRow::Kind::renamed:
        return {u"doc", &Theme::secondaryText};
    case CopyReportRow::Kind::failed:
        break;
    }
    return {u"exclamationmark.triangle.fill", &Theme::danger};
}

QGridLayout* makeRows(const QList<CopyReportRow>& rows, QWidget* parent) {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(spacing::small);
    grid->setVerticalSpacing(spacing::small);
    grid->setColumnStretch(2, 1);
    int line = 0;
    for (const auto& row : rows) {
        const auto [symbolName, color] = look(row.kind);
        grid->addWidget(makeSymbolLabel(symbolName, 18, Theme::current().*color, parent), line, 0);
        grid->addWidget(makeLabel(TextRole::emphasis, Tone::normal, parent, row.count), line, 1);
        grid->addWidget(makeLabel(TextRole::body, Tone::quiet, parent, row.detail), line, 2);
        ++line;
    }
    return grid;
}

} // namespace

CopyProgressView::CopyProgressView(QWidget* parent) : QWidget{parent} {
    m_sinceStart.start();
    m_title = makeLabel(TextRole::title, Tone::normal, this);
    m_bar = new QProgressBar{this};
    m_bar->setRange(0, barSteps);
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(tr("Copy progress"));
    m_fileSymbol = makeSymbolLabel(u"doc.on.doc", 16, Theme::current().secondaryText, this);
    m_file = new ElidedLabel{this};
    dress(*m_file, TextRole::body, Tone::quiet);
    m_remaining = makeLabel(TextRole::caption, Tone::quiet, this);
    m_cancel = makeButton(tr("Cancel"), this);
    m_cancel->setToolTip(tr("Stops after the files in progress finish; nothing is left half-copied"));

    auto* column = makeColumn(this);
    column->addWidget(m_title);
    column->addSpacing(spacing::large);
    column->addWidget(m_bar);
    column->addSpacing(spacing::medium);
    auto* file = new QHBoxLayout;
    file->setSpacing(spacing::small);
    file->addWidget(m_fileSymbol);
    file->addWidget(m_file, 1);
    column->addLayout(file);
    column->addSpacing(spacing::huge);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_remaining, 1);
    bottom->addWidget(m_cancel);
    column->addLayout(bottom);
}

void CopyProgressView::show(const CopyService::Progress& progress, CopyKind kind) {
    m_title->setText(copyProgressTitle(progress, kind));
    m_bar->setValue(static_cast<int>(completedShare(progress) * barSteps));
    m_file->setText(text(progress.currentFile));
    m_fileSymbol->setVisible(!progress.currentFile.empty());
    if (m_cancel->isEnabled()) {
        m_remaining->setText(
            timeRemainingText(progress, std::chrono::nanoseconds{m_sinceStart.nsecsElapsed()}));
    }
}

void CopyProgressView::setStopping() {
    m_cancel->setEnabled(false);
    m_remaining->setText(tr("Finishing the files in progress…"));
}

CopyReportView::CopyReportView(const CopyService::Report& report, const LibraryViewModel& library,
                               QWidget* parent)
    : QWidget{parent} {
    const auto interruption = text(library.copyInterruption());
    auto* column = makeColumn(this);
    const auto [symbolName, color] = headingLook(report, !interruption.isEmpty());
    column->addLayout(makeHeading(symbolName, Theme::current().*color,
                                  copyReportTitle(report, !interruption.isEmpty()), this));
    column->addSpacing(spacing::large);
    if (!interruption.isEmpty()) {
        column->addWidget(makeParagraph(interruption, this));
        column->addSpacing(spacing::large);
    }
    column->addLayout(makeRows(copyReportRows(report, copyKind(library)), this));
    if (!report.failures.empty()) {
        column->addSpacing(spacing::medium);
        column->addWidget(new CopyFailureList{report.failures, this});
    }
    column->addSpacing(spacing::huge);

    m_show = makeButton(tr("Show in Finder"), this);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::small);
    buttons->addWidget(m_show);
    if (!report.exported.empty()) {
        m_share = makeButton(tr("Share…"), this);
        m_share->setToolTip(tr("Share the exported files"));
        buttons->addWidget(m_share);
    }
    buttons->addStretch(1);
    if (report.failures.empty() && !report.wasCancelled && library.copiedMarkedPhotos()) {
        m_clear = makeButton(tr("Clear Marks"), this);
        m_clear->setToolTip(tr("Unmark the copied photos"));
        buttons->addWidget(m_clear);
    }
    m_done = makeButton(tr("Done"), this); // last, as Tab goes
    buttons->addWidget(m_done);
    column->addLayout(buttons);
}

CopyFailedView::CopyFailedView(const QString& message, QWidget* parent) : QWidget{parent} {
    auto* column = makeColumn(this);
    column->addLayout(makeHeading(u"exclamationmark.triangle.fill", Theme::current().warning,
                                  tr("Couldn't Start Copy"), this));
    column->addSpacing(spacing::medium);
    column->addWidget(makeParagraph(message, this));
    column->addSpacing(spacing::huge);
    m_cancel = makeButton(tr("Cancel"), this);
    m_choose = makeButton(tr("Choose Another Folder…"), this);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::small);
    buttons->addStretch(1);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_choose);
    column->addLayout(buttons);
}

} // namespace kelvara
