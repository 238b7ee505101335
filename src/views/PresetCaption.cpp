#include "views/PresetCaption.h"

#include "views/Theme.h"

#include <QPainter>

#include <algorithm>

namespace kelvara {

namespace {
constexpr int widest = 640;
constexpr QMargins padding{10, 5, 10, 6};
} // namespace

PresetCaption::PresetCaption(QWidget* parent) : QLabel{parent} {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextFormat(Qt::PlainText);
    setFont(kelvara::font(TextRole::caption));
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setContentsMargins(padding);
    auto colours = palette();
    colours.setColor(QPalette::WindowText, Theme::current().onOverlay); // the same in both appearances
    setPalette(colours);
}

QSize PresetCaption::sizeHint() const {
    constexpr int rounding = 2;
    const auto natural = fontMetrics().size(0, text()).width() + padding.left() + padding.right() + rounding;
    const auto width = std::min(natural, widest);
    return {width, heightForWidth(width)};
}

void PresetCaption::paintEvent(QPaintEvent* event) {
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::current().overlay);
    painter.drawRoundedRect(rect(), radius::popover, radius::popover);
    painter.end();
    QLabel::paintEvent(event);
}

} // namespace kelvara
