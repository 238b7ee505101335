#include "samplecard/Film.h"

#include "samplecard/Noise.h"

#include <cstddef>

namespace kelvara::samplecard {
/// Noise as a demosaiced sensor shows it: neighbours share a part of it.
const std::vector<float>& Film::grainTile() {
    static const std::vector<float> tile = [] {
        constexpr int side = grainSide;
        std::vector<float> white(static_cast<std::size_t>(side) * side);
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                white[static_cast<std::size_t>(y * side + x)] =
                    hash01(x, y, 11) + hash01(x, y, 12) + hash01(x, y, 13) - 1.5F;
        std::vector<float> soft(white.size());
        const auto sample = [&](int x, int y) {
            return white[static_cast<std::size_t>((y & (side - 1)) * side + (x & (side - 1)))];
        };
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                soft[static_cast<std::size_t>(y * side + x)] =
                    sample(x, y) * 1.1F +
                    (sample(x - 1, y) + sample(x + 1, y) + sample(x, y - 1) + sample(x, y + 1)) * 0.45F;
        return soft;
    }();
    return tile;
}

std::vector<float> Film::toneCurve(const FilmOptions& options) {
    std::vector<float> curve(curveSteps + 1);
    for (int i = 0; i <= curveSteps; ++i) {
        const float root = static_cast<float>(i) / curveSteps;
        const float light = root * root * curveTop * options.exposure;
        // A long shoulder: highlights approach white without a visible edge.
        const float shouldered = (1 - std::exp(-1.25F * light)) / (1 - std::exp(-1.25F * curveTop));
        const float encoded = encodedFromLinear(clamp01(shouldered));
        const float steep = encoded * encoded * (3 - 2 * encoded);
        curve[static_cast<std::size_t>(i)] = mix(encoded, steep, options.contrast);
    }
    return curve;
}

Film::Film(int width, int height, const FilmOptions& options)
    : m_picture{width, height}, m_options{options}, m_perDiagonal{4 / (squared(static_cast<float>(width)) +
                                                                       squared(static_cast<float>(height)))},
      m_curve{toneCurve(options)}, m_grain{grainTile().data()} {}

} // namespace kelvara::samplecard
