#pragma once

#include "views/ImagePyramid.h"
#include "views/ZoomGeometry.h"

#include <QImage>

namespace kelvara {

/// Which part of an image a frame of screen pixels shows.
struct ImageView {
    ZoomPoint origin;         ///< The image point at the frame's top left corner.
    double magnification = 1; ///< Screen pixels per pixel of the *shown* image size.
    ZoomSize shownSize;       ///< The size the image stands for: a thumbnail stands for the full image.
    bool isNearest = false;   ///< Pixels as squares; else smooth.
};

/// Draws what `view` shows of the image into `frame` (Format_RGB32), the rest in `background`. Image pixels
/// fall on whole screen pixels at magnification 1. Takes time by the frame's size alone, however large the
/// image is.
void drawImage(QImage& frame, const ImagePyramid& image, const ImageView& view, QRgb background);

} // namespace kelvara
