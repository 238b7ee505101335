#pragma once

#include "model/LightAdjustments.h"

#include <QWidget>

#include <array>

class QToolButton;

namespace kelvara {

class LightRow;
class Preferences;

/// The group "Light" of the edit inspector: its six values under a heading that opens and closes them, which
/// is remembered.
class LightGroup : public QWidget {
    Q_OBJECT

public:
    /// The preferences outlive it.
    explicit LightGroup(Preferences& preferences, QWidget* parent = nullptr);

    void show(const LightAdjustments& adjustments);
    using QWidget::show;
    void setAutomaticEnabled(bool isEnabled);
    /// Ends a drag under way, and takes what is typed: another photo comes.
    void letGo();

signals:
    /// What follows belongs together.
    void gestureBegan();
    void moved(kelvara::LightAdjustments::Slider slider, double amount);
    void automaticRequested();
    void resetRequested();

private:
    [[nodiscard]] QWidget* makeHeading();
    void setOpen(bool isOpen);

    Preferences& m_preferences;
    QToolButton* m_disclosure = nullptr;
    QToolButton* m_automatic = nullptr;
    QToolButton* m_reset = nullptr;
    QWidget* m_rows;
    std::array<LightRow*, LightAdjustments::sliders.size()> m_sliders{};
};

} // namespace kelvara
