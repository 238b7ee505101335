#pragma once

#include "imaging/Bitmap.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

namespace kelvara {

/// A reduced copy of a picture: four floats a pixel, and a border of one pixel around it that continues the
/// edge of the picture itself, of which the outermost pixels are only a part.
class ReducedPicture {
public:
    static constexpr int border = 1;

    /// Null when memory is short. Pixels start undefined.
    [[nodiscard]] static std::unique_ptr<ReducedPicture> create(PixelSize size);

    /// Without the border.
    [[nodiscard]] PixelSize size() const { return m_size; }
    [[nodiscard]] int rows() const { return m_size.height + 2 * border; }
    [[nodiscard]] std::size_t rowFloats() const {
        return static_cast<std::size_t>(m_size.width + 2 * border) * 4;
    }
    /// Both with the border, 0 is its top.
    [[nodiscard]] float* row(int y) { return m_pixels.get() + rowFloats() * static_cast<std::size_t>(y); }
    [[nodiscard]] const float* row(int y) const {
        return m_pixels.get() + rowFloats() * static_cast<std::size_t>(y);
    }

private:
    explicit ReducedPicture(PixelSize size) : m_size{size} {}

    PixelSize m_size;
    std::unique_ptr<float[]> m_pixels;
};

/// Pushes pixels away from what surrounds them: a picture plus its difference from a Gaussian blur of it,
/// once or several times in a row. Blurs are made of reduced copies, whose size is the same however large the
/// picture is.
class LocalContrast {
public:
    /// One time.
    struct Stage {
        double amount = 0; ///< Of the difference; negative softens.
        double radius = 0; ///< The Gaussian's sigma in pixels. A stage below half a pixel changes nothing.
    };

    /// Blurs `source`, for the stages in their order. Empty when memory is short or `stop` was requested.
    [[nodiscard]] static std::optional<LocalContrast>
    make(const Bitmap& source, std::span<const Stage> stages, const std::stop_token& stop);

    /// For one thread, which goes through a picture's rows.
    class Rows;

private:
    struct Layer {
        float weight;              ///< How many times the blurred copy is subtracted in the end.
        int factor;                ///< What it is reduced by.
        std::vector<float> shares; ///< Of the next blurred pixel in the pixels between two.
        std::unique_ptr<const ReducedPicture> blurred;
    };

    float m_sourceWeight = 1;
    std::vector<Layer> m_layers;
};

class LocalContrast::Rows {
public:
    /// `contrast` outlives it.
    explicit Rows(const LocalContrast& contrast);

    /// What `apply` is for from now on.
    void moveTo(int y);
    /// Changes pixels of four floats, those of the row's from `x` on. They may come to lie beyond 0 and 1.
    void apply(int x, std::size_t count, float* pixels) const;

private:
    const LocalContrast& m_contrast;
    std::vector<std::vector<float>> m_rows; ///< Of each layer, weighted.
};

} // namespace kelvara
