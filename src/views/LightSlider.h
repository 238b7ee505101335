#pragma once

#include "model/LightAdjustments.h"

#include <QAbstractSlider>

namespace kelvara {

/// Moves one value of a photo's light: a track that is filled from its middle, which is neutral.
///
/// With Alt or Ctrl dragging is ten times finer and arrows take the smallest steps, with Shift large ones.
/// The wheel turns it only while it has the keyboard, for it lies in what scrolls. A double-click is neutral.
class LightSlider : public QAbstractSlider {
    Q_OBJECT

public:
    explicit LightSlider(LightAdjustments::Slider slider, QWidget* parent = nullptr);

    [[nodiscard]] LightAdjustments::Slider slider() const { return m_slider; }
    [[nodiscard]] double amount() const { return m_amount; }
    /// What it shows; moves nothing else.
    void showAmount(double amount);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    /// What follows belongs together.
    void gestureBegan();
    void moved(double amount);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    [[nodiscard]] double span() const;     ///< Logical pixels from neutral to an end.
    [[nodiscard]] double handleAt() const; ///< The middle of the handle.
    [[nodiscard]] double atStep(double amount, Qt::KeyboardModifiers modifiers) const;
    void stepBy(double steps, Qt::KeyboardModifiers modifiers);
    void moveTo(double amount);

    LightAdjustments::Slider m_slider;
    double m_amount = 0;
    double m_dragged = 0; ///< What the pointer has come to, before it is rounded.
    double m_pointer = 0; ///< Where it was last.
    int m_turned = 0;     ///< Of the wheel, less than a notch.
    bool m_isKeyed =
        false; ///< Keys and wheel belong to one gesture until the mouse or the focus comes in between.
};

/// Tells assistive tools the value in the slider's own numbers.
void makeLightSlidersAccessible();

} // namespace kelvara
