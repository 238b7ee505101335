#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kelvara {

/// One photo's edits of its light. A slider that stands at neutral counts as not there. A value; any thread.
class LightAdjustments {
public:
    enum class Slider { exposure, contrast, highlights, shadows, whites, blacks };
    static constexpr std::array<Slider, 6> sliders{Slider::exposure, Slider::contrast, Slider::highlights,
                                                   Slider::shadows,  Slider::whites,   Slider::blacks};

    /// What a slider is called in files: "exposure".
    [[nodiscard]] static std::string_view rawValue(Slider slider);
    /// Empty for a text that names none.
    [[nodiscard]] static std::optional<Slider> fromRawValue(std::string_view text);
    /// A slider goes from the negative of this to it: stops for exposure, else hundredths.
    [[nodiscard]] static double limit(Slider slider) { return slider == Slider::exposure ? 5 : 100; }
    /// The smallest magnitude that is not neutral.
    [[nodiscard]] static double threshold(Slider slider) { return slider == Slider::exposure ? 0.005 : 0.5; }
    /// What the slider shows at `value`, in every locale: "+0.35", "0.00", "-20", "0".
    [[nodiscard]] static std::string text(Slider slider, double value);

    /// 0 where the slider is at neutral.
    [[nodiscard]] double operator[](Slider slider) const { return m_values[index(slider)]; }
    /// Takes the nearest value in the slider's range; what is no number is neutral.
    void set(Slider slider, double value);
    /// No slider is set.
    [[nodiscard]] bool isEmpty() const { return *this == LightAdjustments{}; }

    [[nodiscard]] std::size_t hash() const;
    friend bool operator==(const LightAdjustments&, const LightAdjustments&) = default;

private:
    static std::size_t index(Slider slider) { return static_cast<std::size_t>(slider); }

    std::array<double, sliders.size()> m_values{};
};

} // namespace kelvara

template <> struct std::hash<kelvara::LightAdjustments> {
    std::size_t operator()(const kelvara::LightAdjustments& light) const noexcept { return light.hash(); }
};
