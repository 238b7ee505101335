#pragma once

#include "model/LightAdjustments.h"

#include <QLineEdit>

namespace kelvara {

/// The number of a light slider, which can be clicked and typed. Figures stand in columns, so that nothing
/// trembles while it changes.
class LightValueField : public QLineEdit {
    Q_OBJECT

public:
    static constexpr int textMargin = 5; ///< As the style sheet has it.

    explicit LightValueField(LightAdjustments::Slider slider, QWidget* parent = nullptr);

    void showAmount(double amount);

signals:
    void typed(double amount);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showText();
    void finish();

    LightAdjustments::Slider m_slider;
    double m_amount = 0;
};

} // namespace kelvara
