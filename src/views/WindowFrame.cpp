#include "views/WindowFrame.h"

#include <algorithm>

namespace kelvara {

QRect fittedFrame(const QRect& frame, const QRect& available) {
    const auto width = std::min(frame.width(), available.width());
    const auto height = std::min(frame.height(), available.height());
    const auto lastX = available.x() + available.width() - width;
    const auto lastY = available.y() + available.height() - height;
    return {std::clamp(frame.x(), available.x(), lastX), std::clamp(frame.y(), available.y(), lastY), width,
            height};
}

} // namespace kelvara
