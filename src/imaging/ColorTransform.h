#pragma once

#include "imaging/ColorProfile.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kelvara {

/// Converts 8-bit pixels from one colour space to another. Thread-safe; made once for a pair of spaces and
/// kept.
class ColorTransform {
public:
    /// How the pixels to convert lie in memory; the results are always blue, green, red and an untouched
    /// byte.
    enum class Input { bgrx, cmyk, invertedCmyk };

    /// Null when the profiles can't be combined; `source` must have the model of `input`.
    [[nodiscard]] static std::shared_ptr<const ColorTransform>
    between(const ColorProfilePtr& source, Input input, const ColorProfilePtr& destination);

    /// `pixels` of them; `from` and `to` may be the same memory where both have four bytes a pixel.
    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;

    ~ColorTransform();
    ColorTransform(const ColorTransform&) = delete;
    ColorTransform& operator=(const ColorTransform&) = delete;

private:
    explicit ColorTransform(void* transform) : m_transform{transform} {}
    static std::shared_ptr<const ColorTransform> make(const ColorProfile& source, Input input,
                                                      const ColorProfile& destination);

    void* m_transform;
};

} // namespace kelvara
