#pragma once

#include "imaging/Bitmap.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stop_token>

namespace kelvara {

class MatrixTransform;

/// Converts pixels from one colour space to another. Thread-safe; made once for a pair of spaces and
/// kept.
class ColorTransform {
public:
    /// How the pixels to convert lie in memory.
    enum class Input { bgrx8, bgrx16, cmyk, invertedCmyk };

    /// Null when the profiles can't be combined; `source` must have the model of `input`.
    [[nodiscard]] static std::shared_ptr<const ColorTransform>
    between(const ColorProfilePtr& source, Input input, const ColorProfilePtr& destination,
            PixelFormat output = PixelFormat::bgrx8);

    /// `pixels` of them; `from` and `to` may be the same memory where both have as many bytes a pixel. The
    /// number that means nothing stays as it is in `to`.
    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;

    ~ColorTransform();
    ColorTransform(const ColorTransform&) = delete;
    ColorTransform& operator=(const ColorTransform&) = delete;

private:
    ColorTransform(void* transform, std::unique_ptr<const MatrixTransform> matrix, PixelFormat output);
    static std::shared_ptr<const ColorTransform> make(const ColorProfile& source, Input input,
                                                      const ColorProfile& destination, PixelFormat output);

    void* m_transform; // LittleCMS's; null where `m_matrix` converts
    std::unique_ptr<const MatrixTransform> m_matrix;
    PixelFormat m_output;
};

/// The picture in another colour space and format; itself when it is in both, and when its own space can't be
/// converted but the format is right: slightly wrong colours are better than none. Null for null, when memory
/// is short or `stop` was requested.
[[nodiscard]] BitmapPtr converted(BitmapPtr bitmap, const ColorProfilePtr& profile, PixelFormat format,
                                  const std::stop_token& stop);

} // namespace kelvara
