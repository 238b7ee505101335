#include "views/PresetStrengthView.h"

#include "views/ResettingSlider.h"
#include "views/Text.h"

#include <QBoxLayout>

#include <cmath>

namespace kelvara {

namespace {

constexpr int fullStrength = 100; // percent

QString omissionsText(const DevelopPreset& preset) {
    QStringList names;
    for (const auto& name : preset.unsupportedSettings) names.append(text(name));
    if (names.isEmpty()) return {};
    return PresetStrengthView::tr("Not previewed: ") + names.join(QStringLiteral(", "));
}

} // namespace

PresetStrengthView::PresetStrengthView(PresetStore& presets, QWidget* parent)
    : Panel{&Theme::panel, parent}, m_presets{presets} {
    setHairlines(Qt::TopEdge);
    m_title = new ElidedLabel{this};
    m_summary = makeNote();
    m_label = makeLabel(TextRole::caption, Tone::normal, this, tr("Strength"));
    m_slider = new ResettingSlider{fullStrength, this};
    m_slider->setRange(0, fullStrength);
    m_slider->setPageStep(10);
    m_slider->setAccessibleName(tr("Strength"));
    m_slider->setToolTip(tr("How strongly the preset is applied; double-click for 100%"));
    m_value = makeLabel(TextRole::caption, Tone::quiet, this);
    m_value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_value->setFixedWidth(
        QFontMetrics{kelvara::font(TextRole::caption)}.horizontalAdvance(QStringLiteral("100%")) +
        spacing::hair);
    m_omissions = makeNote();
    connect(m_slider, &QSlider::valueChanged, this,
            [this](int percent) { m_presets.setAmount(percent / double{fullStrength}); });

    auto* strength = new QHBoxLayout;
    strength->setSpacing(spacing::small);
    strength->addWidget(m_label);
    strength->addWidget(m_slider, 1);
    strength->addWidget(m_value);
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(spacing::medium, spacing::small + 2, spacing::medium, spacing::small);
    column->setSpacing(spacing::hair);
    column->addWidget(m_title);
    column->addWidget(m_summary);
    column->addSpacing(spacing::tiny);
    column->addLayout(strength);
    column->addWidget(m_omissions);

    using P = PresetProperty;
    m_subscriptions.push_back(m_presets.observe({P::selectedPresetID, P::visibleCategories, P::activePreset},
                                                [this](const auto&) { refreshPreset(); }));
    m_subscriptions.push_back(m_presets.observe({P::amount}, [this](const auto&) { refreshAmount(); }));
    refreshPreset();
    refreshAmount();
}

QLabel* PresetStrengthView::makeNote() {
    auto* note = makeLabel(TextRole::detail, Tone::quiet, this);
    note->setWordWrap(true);
    return note;
}

void PresetStrengthView::refreshPreset() {
    const auto preset = m_presets.selectedPreset();
    const auto has = preset != nullptr;
    m_title->setText(has ? text(preset->title) : tr("No preset chosen"));
    dress(*m_title, TextRole::emphasis, has ? Tone::normal : Tone::quiet);
    const auto showNote = [](QLabel* note, const QString& words) {
        note->setText(words);
        note->setVisible(!words.isEmpty());
    };
    showNote(m_summary, has && preset->summary ? text(*preset->summary) : QString{});
    showNote(m_omissions, has ? omissionsText(*preset) : QString{});
    for (QWidget* control : std::initializer_list<QWidget*>{m_label, m_slider, m_value})
        control->setEnabled(has);
}

void PresetStrengthView::refreshAmount() {
    const auto percent = static_cast<int>(std::lround(m_presets.amount() * fullStrength));
    m_slider->setValue(percent);
    m_value->setText(QStringLiteral("%1%").arg(percent));
}

} // namespace kelvara
