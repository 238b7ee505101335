#pragma once

#include <QRect>

namespace kelvara {

/// `frame` made small enough for the screen and moved onto it. `available` is the screen without panels.
[[nodiscard]] QRect fittedFrame(const QRect& frame, const QRect& available);

} // namespace kelvara
