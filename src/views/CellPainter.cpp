#include "views/CellPainter.h"

#include <algorithm>
#include <vector>

namespace kelvara {

namespace {

constexpr qint64 millisecondsPerPaint = 5;
constexpr std::size_t screensKept = 3;
constexpr std::size_t cellsAlwaysKept = 64;

} // namespace

void CellPainter::begin() {
    m_clock.start();
    ++m_paint;
    m_isUnfinished = false;
}

void CellPainter::paint(QPainter& painter, const QRect& rect, const FileURL& url,
                        const ThumbnailCellState& state) {
    const auto ratio = painter.device()->devicePixelRatioF();
    auto& ready = m_images[url];
    const bool isMissing = ready.image.isNull() || ready.image.devicePixelRatio() != ratio ||
                           ready.image.size() != (QSizeF{rect.size()} * ratio).toSize();
    if (isMissing || !ready.state.looksLike(state)) {
        if (m_clock.elapsed() < millisecondsPerPaint) {
            ready.image = ThumbnailCell::render(rect.size(), state, ratio);
            ready.state = state;
        } else {
            m_isUnfinished = true;
            if (isMissing) return ThumbnailCell::paintRoughly(painter, rect, state);
        }
    }
    ready.lastPaint = m_paint;
    painter.drawImage(rect.topLeft(), ready.image);
}

bool CellPainter::end(std::size_t cellsPerScreen) {
    if (m_images.size() > screensKept * cellsPerScreen + cellsAlwaysKept) forgetOldest();
    return m_isUnfinished;
}

void CellPainter::forgetOldest() {
    std::vector<unsigned> paints;
    paints.reserve(m_images.size());
    for (const auto& [url, ready] : m_images) paints.push_back(ready.lastPaint);
    const auto middle = paints.begin() + static_cast<std::ptrdiff_t>(paints.size() / 2);
    std::nth_element(paints.begin(), middle, paints.end());
    std::erase_if(m_images, [limit = *middle](const auto& entry) { return entry.second.lastPaint < limit; });
}

} // namespace kelvara
