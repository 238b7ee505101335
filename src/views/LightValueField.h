#pragma once

#include "model/LightAdjustments.h"

#include <QLineEdit>

#include <optional>

namespace kelvara {

/// The number of a light slider, which can be clicked and typed, and moved with the arrows. Figures stand in
/// columns, so that nothing trembles while it changes.
class LightValueField : public QLineEdit {
    Q_OBJECT

public:
    static constexpr int textMargin = 5; ///< As the style sheet has it.

    explicit LightValueField(LightAdjustments::Slider slider, QWidget* parent = nullptr);

    void showAmount(double amount);
    /// What is typed is the number from now on.
    void finish();

signals:
    /// What follows belongs together.
    void gestureBegan();
    void moved(double amount);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] std::optional<double> typed() const;
    void showText();

    LightAdjustments::Slider m_slider;
    double m_amount = 0;
    bool m_isStepping = false; ///< The arrows belong to one gesture until something is typed.
};

} // namespace kelvara
