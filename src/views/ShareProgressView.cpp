#include "views/ShareProgressView.h"

#include "views/BusyIndicator.h"
#include "views/Controls.h"
#include "views/Text.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include <chrono>

namespace kelvara {

namespace {
constexpr std::chrono::milliseconds moment{300};
constexpr int shadowDepth = 6;
constexpr int gapBelow = 40; // clears the status bar
} // namespace

ShareProgressView::ShareProgressView(SharingController& sharing, QWidget* parent)
    : QWidget{parent}, m_sharing{sharing} {
    hide();
    m_count = makeLabel(TextRole::body, Tone::normal, this);
    auto* stop = makeIconButton(u"xmark.circle.fill", tr("Stop Making JPEGs"), tr("Stop making JPEGs"), this);
    stop->setIconSize({16, 16});
    connect(stop, &QToolButton::clicked, this, [this] { m_sharing.cancel(); });
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(shadowDepth + spacing::medium, shadowDepth + spacing::tiny,
                            shadowDepth + spacing::tiny, shadowDepth + spacing::tiny);
    row->setSpacing(spacing::small);
    row->addWidget(new BusyIndicator{16, this});
    row->addWidget(m_count);
    row->addWidget(stop);

    parent->installEventFilter(this);
    m_patience.setSingleShot(true);
    m_patience.setInterval(moment);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        place();
        raise();
        show();
    });
    m_subscription = sharing.observe({SharingProperty::progress}, [this](const auto&) { refresh(); });
    refresh();
}

void ShareProgressView::refresh() {
    const auto& progress = m_sharing.progress();
    if (!progress) {
        m_patience.stop();
        return hide();
    }
    m_count->setText(tr("Making JPEGs: %1 of %2")
                         .arg(countText(static_cast<std::int64_t>(progress->done)),
                              countText(static_cast<std::int64_t>(progress->total))));
    if (isVisible()) return place();
    if (!m_patience.isActive()) m_patience.start();
}

void ShareProgressView::place() {
    const auto size = sizeHint();
    const auto room = parentWidget()->size();
    setGeometry((room.width() - size.width()) / 2, room.height() - size.height() - gapBelow, size.width(),
                size.height());
}

void ShareProgressView::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const auto panel = QRectF{rect()}.adjusted(shadowDepth, shadowDepth, -shadowDepth, -shadowDepth);
    auto shadow = theme.shadow;
    shadow.setAlpha(shadow.alpha() / shadowDepth);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadow);
    for (int grow = shadowDepth; grow > 0; --grow) {
        const auto edge = panel.adjusted(-grow, -grow + 1, grow, grow);
        painter.drawRoundedRect(edge, edge.height() / 2, edge.height() / 2);
    }
    painter.setBrush(theme.popover);
    painter.setPen(QPen{theme.border, 1});
    const auto edge = panel.adjusted(0.5, 0.5, -0.5, -0.5);
    painter.drawRoundedRect(edge, edge.height() / 2, edge.height() / 2);
}

bool ShareProgressView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible()) place();
    return QWidget::eventFilter(watched, event);
}

} // namespace kelvara
