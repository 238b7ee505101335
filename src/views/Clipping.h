#pragma once

#include <QImage>

namespace kelvara {

/// Which clipped areas a picture is shown with: those where a channel has nothing below or above it.
struct Clipping {
    bool shadows = false;
    bool highlights = false;
    friend bool operator==(const Clipping&, const Clipping&) = default;
};

/// Paints clipped shadows blue and clipped highlights red. `frame`: Format_RGB32.
void paintClipping(QImage& frame, const Clipping& shown);

} // namespace kelvara
