#include "views/DropFrame.h"

#include "views/LocalURL.h"
#include "views/Theme.h"

#include <QMimeData>
#include <QPainter>

namespace kelvara {

DropFrame::DropFrame(QWidget* parent) : QWidget{parent} {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void DropFrame::showOverParent() {
    setGeometry(parentWidget()->rect());
    raise();
    show();
}

void DropFrame::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    auto veil = theme.accent;
    veil.setAlpha(0x18);
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen{theme.accent, 3});
    painter.setBrush(veil);
    painter.drawRoundedRect(QRectF{rect()}.adjusted(6, 6, -6, -6), radius::sheet, radius::sheet);
}

std::vector<FileURL> droppedPaths(const QMimeData& data) {
    std::vector<FileURL> paths;
    for (const auto& url : data.urls()) {
        if (url.isLocalFile()) paths.push_back(fromQUrl(url));
    }
    return paths;
}

} // namespace kelvara
