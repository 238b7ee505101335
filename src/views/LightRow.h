#pragma once

#include "model/LightAdjustments.h"

#include <QWidget>

namespace kelvara {

class LightSlider;
class LightValueField;

/// One value of a photo's light: its name, its number, and under them the slider.
class LightRow : public QWidget {
    Q_OBJECT

public:
    explicit LightRow(LightAdjustments::Slider slider, QWidget* parent = nullptr);

    /// "Exposure".
    [[nodiscard]] static QString name(LightAdjustments::Slider slider);
    void showAmount(double amount);
    /// Ends a drag under way, and takes what is typed.
    void letGo();

signals:
    /// What follows belongs together.
    void gestureBegan();
    void moved(double amount);

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    LightSlider* m_control;
    LightValueField* m_value;
};

} // namespace kelvara
