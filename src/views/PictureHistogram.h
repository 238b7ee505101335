#pragma once

#include "async/LatestOnly.h"
#include "presets/Histogram.h"
#include "views/ImagePyramid.h"

#include <functional>
#include <memory>
#include <optional>

namespace kelvara {

/// The histogram of the picture on screen, measured in the background. While pictures come faster than they
/// are measured, one is measured after the other and those in between are left out. Main thread.
class PictureHistogram {
public:
    using Picture = std::shared_ptr<const ImagePyramid>;

    static constexpr int sampleSize = 512; ///< Pixels on the longer side.

    /// The executors outlive it. `onChange` follows each change of `histogram()`, never during `show`.
    PictureHistogram(Executor& background, Executor& main, std::function<void()> onChange);

    /// The picture that it is of from now on; null for none.
    void show(Picture picture);
    /// Of the picture before until the new one is measured; empty for none.
    [[nodiscard]] const std::optional<Histogram>& histogram() const { return m_histogram; }
    [[nodiscard]] bool isLoading() const { return m_isMeasuring; }

private:
    void measure();

    std::function<void()> m_onChange;
    LatestOnly m_measuring;
    bool m_isMeasuring = false;
    Picture m_picture;
    Picture m_measured; // the last one whose measuring has begun
    std::optional<Histogram> m_histogram;
};

} // namespace kelvara
