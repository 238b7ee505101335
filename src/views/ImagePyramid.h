#pragma once

#include "imaging/Bitmap.h"

#include <QImage>

#include <memory>
#include <stop_token>
#include <vector>

namespace kelvara {

/// An image with its halvings, so that any part of it can be drawn small without reading all its pixels and
/// without aliasing. Immutable; any thread.
class ImagePyramid {
public:
    /// Halves a bitmap of 8 bits until it is small. Takes some time for a large one, so not for the main
    /// thread. Empty when stopped, when memory is short or when `bitmap` is null.
    [[nodiscard]] static std::shared_ptr<const ImagePyramid> build(const BitmapPtr& bitmap,
                                                                   const std::stop_token& stop = {});

    /// The bitmap as it was given, without a copy.
    [[nodiscard]] const QImage& image() const { return level(0); }
    [[nodiscard]] int levels() const { return static_cast<int>(m_levels.size()); }
    /// Level n is 2^n times smaller, rounded up.
    [[nodiscard]] const QImage& level(int n) const { return m_levels[static_cast<std::size_t>(n)].image; }
    /// The level's own memory.
    [[nodiscard]] const BitmapPtr& bitmap(int n) const {
        return m_levels[static_cast<std::size_t>(n)].bitmap;
    }
    /// The smallest level that has at least as many pixels as the image has on screen at `magnification`.
    [[nodiscard]] int levelFor(double magnification) const;

private:
    struct Level {
        BitmapPtr bitmap;
        QImage image;
    };
    explicit ImagePyramid(std::vector<Level> levels) : m_levels{std::move(levels)} {}
    std::vector<Level> m_levels;
};

} // namespace kelvara
