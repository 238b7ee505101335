#include "views/Clipping.h"

namespace kelvara {

namespace {

constexpr QRgb shadowsColor = 0xff2f6bff;
constexpr QRgb highlightsColor = 0xffff2d2d;

bool hasChannel(QRgb pixel, int level) {
    return qRed(pixel) == level || qGreen(pixel) == level || qBlue(pixel) == level;
}

} // namespace

void paintClipping(QImage& frame, const Clipping& shown) {
    if (shown == Clipping{}) return;
    for (int y = 0; y < frame.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(frame.scanLine(y));
        for (auto* pixel = row; pixel != row + frame.width(); ++pixel) {
            if (shown.highlights && hasChannel(*pixel, 255)) {
                *pixel = highlightsColor;
            } else if (shown.shadows && hasChannel(*pixel, 0)) {
                *pixel = shadowsColor;
            }
        }
    }
}

} // namespace kelvara
