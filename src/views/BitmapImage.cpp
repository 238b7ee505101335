#include "views/BitmapImage.h"

#include <QtGlobal>

namespace kelvara {

QImage wrapped(const BitmapPtr& bitmap) {
    // Blue first in memory is what Format_RGB32 is on a little-endian machine.
    static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN);
    if (bitmap == nullptr) return {};
    auto owner = std::make_unique<BitmapPtr>(bitmap);
    QImage image{bitmap->data(),       bitmap->width(),
                 bitmap->height(),     static_cast<qsizetype>(bitmap->rowBytes()),
                 QImage::Format_RGB32, [](void* held) { delete static_cast<BitmapPtr*>(held); },
                 owner.get()};
    if (!image.isNull()) owner.release();
    return image;
}

} // namespace kelvara
