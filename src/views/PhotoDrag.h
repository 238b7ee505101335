#pragma once

#include "model/PhotoItem.h"

#include <QPixmap>

#include <vector>

class QImage;
class QWidget;

namespace kelvara {

/// Carries the photos' files out of the window until they are dropped: to copy, never to move. `thumbnail`
/// is of the photo under the pointer, or null.
void dragPhotos(QWidget& source, const std::vector<PhotoItem>& photos, const QImage& thumbnail);

/// What the pointer carries: the thumbnail, as the top of a pile with its number where there are several.
[[nodiscard]] QPixmap dragPicture(const QImage& thumbnail, std::size_t count, qreal devicePixelRatio);

} // namespace kelvara
