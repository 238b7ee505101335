#include "views/ExportOptionsView.h"

#include "model/OneImagePerShot.h"
#include "views/Controls.h"
#include "views/DestinationButton.h"
#include "views/ExportTexts.h"
#include "views/Picker.h"
#include "views/ResettingSlider.h"
#include "views/Segments.h"
#include "views/SheetParts.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QGridLayout>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace kelvara {

using Format = ExportSettings::Format;

namespace {

constexpr int percent = 100;
constexpr std::array longEdges{4096, 3072, 2048, 1600}; // pixels
constexpr int labelWidth = 88;
constexpr int controlWidth = SheetParts::width - labelWidth - spacing::medium;

int percents(double quality) { return static_cast<int>(std::lround(quality * percent)); }

/// In column 0; what it names comes into column 1.
QLabel* addLabel(QGridLayout& form, const QString& words, QWidget* parent) {
    auto* label = makeLabel(TextRole::body, Tone::quiet, parent, words);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form.addWidget(label, form.rowCount(), 0);
    return label;
}

void addControl(QGridLayout& form, QWidget* control) { form.addWidget(control, form.rowCount() - 1, 1); }

} // namespace

ExportOptionsView::ExportOptionsView(LibraryViewModel& library, QWidget* parent)
    : QWidget{parent}, m_library{library} {
    auto* column = SheetParts::makeColumn(this);
    column->addLayout(SheetParts::makeHeading(u"square.and.arrow.up.on.square", Theme::current().accent,
                                              exportTitle(oneImagePerShot(library.exportItems()).size()),
                                              this));
    column->addSpacing(spacing::large);
    column->addLayout(makeForm());
    column->addSpacing(spacing::medium);
    m_note = makeNote();
    column->addWidget(m_note);
    column->addSpacing(spacing::large);

    m_share = SheetParts::makeButton(tr("Share…"), this);
    m_share->setIcon(symbolIcon(u"square.and.arrow.up", &Theme::text));
    m_share->setToolTip(tr("Export with these options into a temporary folder, then share or AirDrop the "
                           "files without keeping them"));
    m_cancel = SheetParts::makeButton(tr("Cancel"), this);
    m_export = SheetParts::makeButton(tr("Export"), this);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::small);
    buttons->addWidget(m_share);
    buttons->addStretch(1);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_export);
    column->addLayout(buttons);

    using P = LibraryProperty;
    m_subscription =
        library.observe({P::exportSettings, P::copiesIntoDateFolders}, [this](const auto&) { refresh(); });
    refresh();
}

CopyService::Export ExportOptionsView::job() const {
    return {m_library.pendingExportLook(), m_library.exportSettings()};
}

template <typename Change> void ExportOptionsView::alter(Change change) {
    auto settings = m_library.exportSettings();
    change(settings);
    m_library.setExportSettings(settings);
}

QGridLayout* ExportOptionsView::makeForm() {
    auto* form = new QGridLayout;
    form->setHorizontalSpacing(spacing::medium);
    form->setVerticalSpacing(spacing::small);
    form->setColumnMinimumWidth(0, labelWidth);
    form->setColumnStretch(1, 1);
    addFormat(*form);
    addQuality(*form);
    addBitDepth(*form);
    addSize(*form);
    addToggles(*form);
    addLabel(*form, tr("Destination"), this);
    constexpr int symbolWidth = 50;
    addControl(*form, new DestinationButton{m_library, controlWidth - symbolWidth, this});
    return form;
}

void ExportOptionsView::addFormat(QGridLayout& form) {
    addLabel(form, tr("Format"), this);
    auto* segments = new Segments{this};
    segments->setAccessibleName(tr("Format"));
    for (std::size_t i = 0; i < m_formats.size(); ++i) {
        const auto format = ExportSettings::formats[i];
        m_formats[i] = segments->add(text(ExportSettings::displayName(format)));
        connect(m_formats[i], &QToolButton::clicked, this,
                [this, format] { alter([&](ExportSettings& settings) { settings.format = format; }); });
    }
    addControl(form, segments);
}

void ExportOptionsView::addQuality(QGridLayout& form) {
    auto* label = addLabel(form, tr("Quality"), this);
    m_quality = new ResettingSlider{percents(ExportSettings{}.quality), this};
    m_quality->setRange(percents(ExportSettings::lowestQuality), percent);
    m_quality->setPageStep(5);
    m_quality->setAccessibleName(tr("Quality"));
    connect(m_quality, &QSlider::valueChanged, this, [this](int value) {
        alter([&](ExportSettings& settings) { settings.quality = value / double{percent}; });
    });
    m_qualityValue = makeLabel(TextRole::body, Tone::normal, this);
    m_qualityValue->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_qualityValue->setFixedWidth(m_qualityValue->fontMetrics().horizontalAdvance(QStringLiteral("100")) +
                                  spacing::hair);
    m_qualityParts = {label, m_quality, m_qualityValue};
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::small);
    row->addWidget(m_quality, 1);
    row->addWidget(m_qualityValue);
    form.addLayout(row, form.rowCount() - 1, 1);
}

void ExportOptionsView::addBitDepth(QGridLayout& form) {
    auto* label = addLabel(form, tr("Bit Depth"), this);
    auto* segments = new Segments{this};
    segments->setAccessibleName(tr("Bit Depth"));
    m_eightBit = segments->add(tr("8-bit"));
    m_sixteenBit = segments->add(tr("16-bit"));
    for (auto* segment : {m_eightBit, m_sixteenBit}) {
        const bool isDeep = segment == m_sixteenBit;
        connect(segment, &QToolButton::clicked, this,
                [this, isDeep] { alter([&](ExportSettings& settings) { settings.uses16Bit = isDeep; }); });
    }
    m_bitDepthParts = {label, segments};
    addControl(form, segments);
}

void ExportOptionsView::addSize(QGridLayout& form) {
    addLabel(form, tr("Size"), this);
    m_size = new Picker{this};
    m_size->setFocusPolicy(Qt::TabFocus);
    m_size->setAccessibleName(tr("Size"));
    m_size->addItem(longEdgeText({}), 0);
    std::set<int, std::greater<>> sizes{longEdges.begin(), longEdges.end()};
    if (const auto chosen = m_library.exportSettings().longEdge) sizes.insert(*chosen); // from elsewhere
    for (const auto size : sizes) m_size->addItem(longEdgeText(size), size);
    connect(m_size, &Picker::activated, this, [this] {
        const auto size = m_size->currentData().toInt();
        alter([&](ExportSettings& settings) {
            settings.longEdge = size > 0 ? std::optional{size} : std::nullopt;
        });
    });
    addControl(form, m_size);
}

QCheckBox* ExportOptionsView::addToggle(QGridLayout& form, const QString& title, const QString& help) {
    auto* toggle = new QCheckBox{this};
    const auto room = controlWidth - 30; // the box itself
    toggle->setText(withoutMnemonics(toggle->fontMetrics().elidedText(title, Qt::ElideMiddle, room)));
    toggle->setAccessibleName(title);
    toggle->setToolTip(help);
    toggle->setFocusPolicy(Qt::TabFocus);
    form.addWidget(toggle, form.rowCount(), 1);
    return toggle;
}

void ExportOptionsView::addToggles(QGridLayout& form) {
    if (const auto& look = m_library.pendingExportLook()) {
        m_look = addToggle(form, tr("Apply %1").arg(text(look->title())));
        connect(m_look, &QCheckBox::toggled, this,
                [this](bool isOn) { alter([&](ExportSettings& settings) { settings.appliesLook = isOn; }); });
    }
    m_location = addToggle(form, tr("Include Location"), tr("Copy GPS coordinates from the originals"));
    connect(m_location, &QCheckBox::toggled, this,
            [this](bool isOn) { alter([&](ExportSettings& settings) { settings.keepsLocation = isOn; }); });
    m_dateFolders = addToggle(form, tr("Sort into Date Folders"));
    connect(m_dateFolders, &QCheckBox::toggled, this,
            [this](bool isOn) { m_library.setCopiesIntoDateFolders(isOn); });
}

QLabel* ExportOptionsView::makeNote() {
    auto* note = makeLabel(TextRole::caption, Tone::quiet, this);
    note->setWordWrap(true);
    // As high as the longest one, so that nothing jumps.
    int height = 0;
    for (const auto format : ExportSettings::formats) {
        ExportSettings settings;
        settings.format = format;
        note->setText(exportNote(settings));
        height = std::max(height, note->heightForWidth(SheetParts::width));
    }
    note->setFixedHeight(height);
    note->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    return note;
}

void ExportOptionsView::refresh() {
    const auto& settings = m_library.exportSettings();
    const auto formats = ExportSettings::formats;
    const auto format = std::ranges::find(formats, settings.format) - formats.begin();
    m_formats[static_cast<std::size_t>(format)]->setChecked(true);
    {
        // What comes from elsewhere may lie between two steps, and stays.
        const QSignalBlocker blocker{m_quality};
        m_quality->setValue(percents(settings.quality));
    }
    m_qualityValue->setText(QString::number(percents(settings.quality)));
    m_size->setCurrentIndex(m_size->findData(settings.longEdge.value_or(0)));
    if (m_look) m_look->setChecked(settings.appliesLook);
    m_location->setChecked(settings.keepsLocation);
    m_dateFolders->setChecked(m_library.copiesIntoDateFolders());
    m_note->setText(exportNote(settings));
    refreshEffects();
}

void ExportOptionsView::refreshEffects() {
    const auto& settings = m_library.exportSettings();
    for (auto* part : m_qualityParts) part->setEnabled(settings.format != Format::png);
    // JPEG shows what its files have, and leaves what was chosen for the others alone.
    const auto hasDepths = settings.format != Format::jpeg;
    (hasDepths && settings.uses16Bit ? m_sixteenBit : m_eightBit)->setChecked(true);
    for (auto* part : m_bitDepthParts) {
        part->setEnabled(hasDepths);
        part->setToolTip(bitDepthHelp(settings.format));
    }
}

} // namespace kelvara
