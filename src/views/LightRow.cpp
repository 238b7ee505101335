#include "views/LightRow.h"

#include "views/Controls.h"
#include "views/LightSlider.h"
#include "views/LightValueField.h"

#include <QBoxLayout>
#include <QMouseEvent>

#include <array>

namespace kelvara {

QString LightRow::name(LightAdjustments::Slider slider) {
    const std::array names{tr("Exposure"), tr("Contrast"), tr("Highlights"),
                           tr("Shadows"),  tr("Whites"),   tr("Blacks")};
    return names[static_cast<std::size_t>(slider)];
}

LightRow::LightRow(LightAdjustments::Slider slider, QWidget* parent) : QWidget{parent} {
    const auto name = LightRow::name(slider);
    m_control = new LightSlider{slider, this};
    m_control->setAccessibleName(name);
    m_control->setToolTip(tr("Double-click resets; ⌥-drag for fine changes"));
    m_value = new LightValueField{slider, this};
    m_value->setAccessibleName(name);
    connect(m_control, &LightSlider::gestureBegan, this, &LightRow::gestureBegan);
    connect(m_control, &LightSlider::moved, this, &LightRow::moved);
    connect(m_value, &LightValueField::gestureBegan, this, &LightRow::gestureBegan);
    connect(m_value, &LightValueField::moved, this, &LightRow::moved);
    auto* head = new QHBoxLayout;
    head->setSpacing(spacing::small);
    head->addWidget(makeLabel(TextRole::caption, Tone::normal, this, name));
    head->addStretch(1);
    head->addWidget(m_value);
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addLayout(head);
    // The number ends where the slider does, though its field doesn't.
    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(0, 0, LightValueField::textMargin, 0);
    foot->addWidget(m_control);
    column->addLayout(foot);
}

void LightRow::showAmount(double amount) {
    m_control->showAmount(amount);
    m_value->showAmount(amount);
}

void LightRow::letGo() {
    m_control->setSliderDown(false);
    m_value->finish();
}

void LightRow::mouseDoubleClickEvent(QMouseEvent* event) {
    // On the name, for the others take theirs.
    if (event->button() != Qt::LeftButton) return;
    emit gestureBegan();
    emit moved(0);
}

} // namespace kelvara
