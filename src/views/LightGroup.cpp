#include "views/LightGroup.h"

#include "library/PreferenceKeys.h"
#include "platform/Preferences.h"
#include "views/Controls.h"
#include "views/LightRow.h"
#include "views/LightValueField.h"
#include "views/Symbols.h"

#include <QBoxLayout>

namespace kelvara {

LightGroup::LightGroup(Preferences& preferences, QWidget* parent)
    : QWidget{parent}, m_preferences{preferences}, m_rows{new QWidget{this}} {
    setAccessibleName(tr("Light"));
    auto* heading = makeHeading();
    auto* rows = new QVBoxLayout{m_rows};
    rows->setContentsMargins(spacing::small, 0, spacing::small - LightValueField::textMargin, 0);
    rows->setSpacing(spacing::tiny);
    for (const auto slider : LightAdjustments::sliders) {
        auto* row = new LightRow{slider, m_rows};
        connect(row, &LightRow::gestureBegan, this, &LightGroup::gestureBegan);
        connect(row, &LightRow::moved, this, [this, slider](double amount) { emit moved(slider, amount); });
        rows->addWidget(row);
        m_sliders[static_cast<std::size_t>(slider)] = row;
    }
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->setSpacing(spacing::tiny);
    column->addWidget(heading);
    column->addWidget(m_rows);
    const auto isOpen = m_preferences.boolean(PreferenceKeys::editLightExpanded).value_or(true);
    m_disclosure->setChecked(isOpen);
    setOpen(isOpen);
    connect(m_disclosure, &QToolButton::toggled, this, [this](bool open) {
        m_preferences.setBoolean(PreferenceKeys::editLightExpanded, open);
        setOpen(open);
    });
}

QWidget* LightGroup::makeHeading() {
    auto* heading = new QWidget{this};
    m_disclosure =
        makeIconButton(u"chevron.down", tr("Light"), tr("Show or hide the Light sliders"), heading);
    m_disclosure->setText(tr("Light"));
    m_disclosure->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_disclosure->setFont(kelvara::font(TextRole::emphasis));
    m_disclosure->setObjectName(QStringLiteral("disclosure"));
    m_disclosure->setCheckable(true);
    m_automatic = makeIconButton(u"wand.and.stars", tr("Auto"),
                                 tr("Set the Light sliders for a balanced exposure"), heading);
    m_automatic->setText(tr("Auto"));
    m_automatic->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_automatic->setFont(kelvara::font(TextRole::caption));
    setSymbol(*m_automatic, symbolIcon(u"wand.and.stars", &Theme::text), 15);
    m_reset = makeIconButton(u"arrow.counterclockwise", tr("Reset"), tr("Reset all Light sliders"), heading);
    m_reset->setIconSize({15, 15});
    connect(m_automatic, &QToolButton::clicked, this, &LightGroup::automaticRequested);
    connect(m_reset, &QToolButton::clicked, this, &LightGroup::resetRequested);
    auto* row = new QHBoxLayout{heading};
    row->setContentsMargins({});
    row->setSpacing(spacing::hair);
    row->addWidget(m_disclosure);
    row->addStretch(1);
    row->addWidget(m_automatic);
    row->addWidget(m_reset);
    return heading;
}

void LightGroup::setOpen(bool isOpen) {
    m_rows->setVisible(isOpen);
    setSymbol(*m_disclosure, symbolIcon(isOpen ? u"chevron.down" : u"chevron.right", &Theme::secondaryText),
              12);
}

void LightGroup::show(const LightAdjustments& adjustments) {
    for (const auto slider : LightAdjustments::sliders)
        m_sliders[static_cast<std::size_t>(slider)]->showAmount(adjustments[slider]);
    m_reset->setEnabled(!adjustments.isEmpty());
}

void LightGroup::setAutomaticEnabled(bool isEnabled) { m_automatic->setEnabled(isEnabled); }

void LightGroup::letGo() {
    for (auto* row : m_sliders) row->letGo();
}

} // namespace kelvara
