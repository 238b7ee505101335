#include "views/PresetCaption.h"

#include "views/Theme.h"

#include <QPainter>

#include <algorithm>

namespace kelvara {

namespace {
constexpr int widest = 640;
constexpr QMargins padding{10, 5, 10, 6};
// Breaks names that have no spaces too, which a label cuts.
constexpr int layoutFlags = Qt::AlignCenter | Qt::TextWordWrap | Qt::TextWrapAnywhere;
} // namespace

PresetCaption::PresetCaption(QWidget* parent) : QLabel{parent} {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextFormat(Qt::PlainText);
    setFont(kelvara::font(TextRole::caption));
    setWordWrap(true);
}

int PresetCaption::heightForWidth(int width) const {
    const QRect room{0, 0, width - padding.left() - padding.right(), QWIDGETSIZE_MAX};
    return fontMetrics().boundingRect(room, layoutFlags, text()).height() + padding.top() + padding.bottom();
}

QSize PresetCaption::sizeHint() const {
    constexpr int rounding = 2;
    const auto natural = fontMetrics().size(0, text()).width() + padding.left() + padding.right() + rounding;
    const auto width = std::min(natural, widest);
    return {width, heightForWidth(width)};
}

void PresetCaption::paintEvent(QPaintEvent*) {
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::current().overlay);
    painter.drawRoundedRect(rect(), radius::popover, radius::popover);
    painter.setPen(Theme::current().onOverlay);
    painter.drawText(rect().marginsRemoved(padding), layoutFlags, text());
}

} // namespace kelvara
