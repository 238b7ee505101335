#pragma once

#include <QImage>

#include <memory>
#include <stop_token>
#include <vector>

namespace kelvara {

/// An image with its halvings, so that any part of it can be drawn small without reading all its pixels and
/// without aliasing. Immutable; any thread.
class ImagePyramid {
public:
    /// Halves an image of `Format_RGB32` until it is small. Takes some time for a large image, so not for the
    /// main thread. Empty when stopped or when `image` is null.
    [[nodiscard]] static std::shared_ptr<const ImagePyramid> build(const QImage& image,
                                                                   const std::stop_token& stop = {});

    /// The image as it was given, without a copy.
    [[nodiscard]] const QImage& image() const { return m_levels.front(); }
    [[nodiscard]] int levels() const { return static_cast<int>(m_levels.size()); }
    /// Level n is 2^n times smaller, rounded up.
    [[nodiscard]] const QImage& level(int n) const { return m_levels[static_cast<std::size_t>(n)]; }
    /// The smallest level that has at least as many pixels as the image has on screen at `magnification`.
    [[nodiscard]] int levelFor(double magnification) const;

private:
    explicit ImagePyramid(std::vector<QImage> levels) : m_levels{std::move(levels)} {}
    std::vector<QImage> m_levels;
};

} // namespace kelvara
