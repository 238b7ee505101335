#pragma once

#include "presets/PresetStore.h"
#include "views/Controls.h"

namespace kelvara {

class ResettingSlider;

/// The chosen preset: what it is, how strongly it is applied, and what the preview leaves out.
class PresetStrengthView : public Panel {
    Q_OBJECT

public:
    /// The store outlives it.
    explicit PresetStrengthView(PresetStore& presets, QWidget* parent = nullptr);

private:
    [[nodiscard]] QLabel* makeNote();
    void refreshPreset();
    void refreshAmount();

    PresetStore& m_presets;
    ElidedLabel* m_title;
    QLabel* m_summary;
    QLabel* m_label;
    ResettingSlider* m_slider;
    QLabel* m_value;
    QLabel* m_omissions;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
