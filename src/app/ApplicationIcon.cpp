#include "app/ApplicationIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace kelvara {

QIcon applicationIcon() {
    QSvgRenderer drawing{QStringLiteral(":/desktop/kelvara.svg")};
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap pixmap{side, side};
        pixmap.fill(Qt::transparent);
        QPainter painter{&pixmap};
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace kelvara
