#include "views/PresetCaption.h"

#include "views/Theme.h"

#include <QPainter>
#include <QtMath>

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
    setWordWrap(true);
}

QStaticText PresetCaption::laidOut(int width) const {
    // Breaks names that have no spaces too, which a label cuts.
    QTextOption option{Qt::AlignHCenter};
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QStaticText words{text().replace(u'\n', QChar::LineSeparator)};
    words.setTextFormat(Qt::PlainText);
    words.setTextOption(option);
    words.setTextWidth(width - padding.left() - padding.right());
    words.prepare({}, font());
    return words;
}

int PresetCaption::heightForWidth(int width) const {
    return qCeil(laidOut(width).size().height()) + padding.top() + padding.bottom();
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
    painter.drawStaticText(padding.left(), padding.top(), laidOut(width()));
}

} // namespace kelvara
