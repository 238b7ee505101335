#include "views/PictureHistogram.h"

#include <utility>

namespace kelvara {

namespace {

/// Halved as often as loses nothing.
BitmapPtr sample(const ImagePyramid& picture) {
    int level = 0;
    while (level + 1 < picture.levels() &&
           picture.bitmap(level + 1)->size().longestSide() >= PictureHistogram::sampleSize)
        ++level;
    return picture.bitmap(level);
}

} // namespace

PictureHistogram::PictureHistogram(Executor& background, Executor& main, std::function<void()> onChange)
    : m_onChange{std::move(onChange)}, m_measuring{background, main} {}

void PictureHistogram::show(Picture picture) {
    if (picture == m_picture) return;
    m_picture = std::move(picture);
    if (!m_picture) {
        m_measuring.cancel();
        m_isMeasuring = false;
        m_measured = nullptr;
        m_histogram.reset();
    } else if (!m_isMeasuring) {
        measure();
    }
}

void PictureHistogram::measure() {
    m_isMeasuring = true;
    m_measured = m_picture;
    m_measuring.start(
        [bitmap = sample(*m_picture)](const std::stop_token&) { return Histogram::of(bitmap, sampleSize); },
        [this](std::optional<Histogram> histogram) {
            m_isMeasuring = false;
            if (histogram) m_histogram = std::move(histogram);
            if (m_picture != m_measured) measure();
            m_onChange();
        });
}

} // namespace kelvara
