#include "views/LoupeVideoPlayer.h"

#include "views/Controls.h"
#include "views/Symbols.h"
#include "views/Theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>

#include <algorithm>

namespace kelvara {

namespace {

constexpr int controlsHeight = 40;
constexpr int playBadge = 72;

/// A slider that goes where it is clicked.
class PositionSlider : public QSlider {
public:
    explicit PositionSlider(QWidget* parent) : QSlider{Qt::Horizontal, parent} {}

protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton) {
            setSliderDown(true);
            follow(event);
            event->accept();
        }
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (isSliderDown()) follow(event);
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        setSliderDown(false);
        event->accept();
    }

private:
    void follow(QMouseEvent* event) {
        const auto value = QStyle::sliderValueFromPosition(minimum(), maximum(),
                                                           static_cast<int>(event->position().x()), width());
        setSliderPosition(value);
    }
};

QSize uprightSize(const QVideoFrame& frame) {
    const auto angle = frame.rotationAngle();
    const bool isTurned = angle == QVideoFrame::Rotation90 || angle == QVideoFrame::Rotation270;
    return isTurned ? frame.size().transposed() : frame.size();
}

QRect fitted(const QSize& size, const QRect& area) {
    QRect place{{}, size.scaled(area.size(), Qt::KeepAspectRatio)};
    place.moveCenter(area.center());
    return place;
}

/// "1:05", "1:02:03"
QString timeText(qint64 milliseconds) {
    const auto seconds = milliseconds / 1000;
    const auto two = [](qint64 value) { return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char{'0'}); };
    if (seconds >= 3600) {
        return QStringLiteral("%1:%2:%3").arg(seconds / 3600).arg(two(seconds / 60 % 60), two(seconds % 60));
    }
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(two(seconds % 60));
}

} // namespace

LoupeVideoPlayer::LoupeVideoPlayer(MakePlayer makePlayer, QWidget* parent)
    : QWidget{parent}, m_makePlayer{std::move(makePlayer)} {
    setAttribute(Qt::WA_OpaquePaintEvent);
    makeControls();
    refresh();
}

void LoupeVideoPlayer::makeControls() {
    auto* bar = new Panel{&Theme::window, this};
    bar->setHairlines(Qt::TopEdge);
    m_controls = bar;
    m_playButton = makeIconButton(u"play.fill", tr("Play"), tr("Play / Pause (K)"), m_controls);
    m_muteButton = makeIconButton(u"speaker.wave.2.fill", tr("Mute"), tr("Mute"), m_controls);
    m_slider = new PositionSlider{m_controls};
    m_slider->setFocusPolicy(Qt::NoFocus);
    m_slider->setAccessibleName(tr("Position"));
    m_time = makeLabel(TextRole::caption, Tone::quiet, m_controls);
    auto* row = new QHBoxLayout{m_controls};
    row->setContentsMargins(spacing::small, 1, spacing::medium, 0);
    row->addWidget(m_playButton);
    row->addWidget(m_slider, 1);
    row->addWidget(m_time);
    row->addWidget(m_muteButton);
    connect(m_playButton, &QToolButton::clicked, this, &LoupeVideoPlayer::togglePlayback);
    connect(m_muteButton, &QToolButton::clicked, this, [this] {
        if (m_player) m_player->setMuted(!m_player->isMuted());
    });
    connect(m_slider, &QSlider::valueChanged, this, [this](int value) {
        if (m_player) m_player->seek(value);
    });
}

void LoupeVideoPlayer::makePlayer() {
    if (m_player) return;
    m_player = m_makePlayer();
    connect(m_player.get(), &VideoPlayer::changed, this, &LoupeVideoPlayer::refresh);
    connect(m_player.get(), &VideoPlayer::failed, this, [this] {
        m_hasFailed = true;
        refresh();
    });
    connect(m_player.get(), &VideoPlayer::frameArrived, this, [this](const QVideoFrame& frame) {
        if (!m_hasPlayed || !frame.isValid()) return;
        m_frame = frame;
        update(videoRect());
    });
}

void LoupeVideoPlayer::open(const FileURL& url) {
    if (url == m_url) return;
    m_url = url;
    m_poster = {};
    m_frame = {};
    m_hasPlayed = m_hasFailed = false;
    if (!url.isEmpty()) makePlayer();
    if (m_player) m_player->open(url);
    refresh();
}

void LoupeVideoPlayer::setPoster(const QImage& poster) {
    if (poster.cacheKey() == m_poster.cacheKey()) return;
    m_poster = poster;
    update();
}

void LoupeVideoPlayer::togglePlayback() {
    if (!m_player || m_url.isEmpty() || m_hasFailed) return;
    if (m_player->isPlaying()) return m_player->pause();
    m_hasPlayed = true;
    const auto isAtEnd = m_player->duration() > 0 && m_player->position() >= m_player->duration();
    if (isAtEnd) m_player->seek(0);
    m_player->play();
}

void LoupeVideoPlayer::refresh() {
    const auto duration = m_player ? m_player->duration() : 0;
    const auto position = m_player ? std::min(m_player->position(), duration) : 0;
    m_playButton->setIcon(symbolIcon(isPlaying() ? u"pause.fill" : u"play.fill", &Theme::text));
    m_playButton->setAccessibleName(isPlaying() ? tr("Pause") : tr("Play"));
    m_playButton->setEnabled(!m_hasFailed);
    m_muteButton->setVisible(m_player && m_player->hasSound());
    const auto isMuted = m_player && m_player->isMuted();
    m_muteButton->setIcon(symbolIcon(isMuted ? u"speaker.slash.fill" : u"speaker.wave.2.fill", &Theme::text));
    m_muteButton->setToolTip(isMuted ? tr("Unmute") : tr("Mute"));
    m_muteButton->setAccessibleName(m_muteButton->toolTip());
    m_time->setText(m_hasFailed ? tr("Can't play this video")
                                : tr("%1 / %2").arg(timeText(position), timeText(duration)));
    {
        const QSignalBlocker quiet{m_slider};
        m_slider->setRange(0, static_cast<int>(std::min<qint64>(duration, std::numeric_limits<int>::max())));
        if (!m_slider->isSliderDown()) m_slider->setValue(static_cast<int>(position));
    }
    m_slider->setEnabled(duration > 0);
    update();
}

QRect LoupeVideoPlayer::videoRect() const { return {0, 0, width(), std::max(height() - controlsHeight, 1)}; }

void LoupeVideoPlayer::paintEvent(QPaintEvent*) {
    QPainter painter{this};
    const auto& theme = Theme::current();
    painter.fillRect(rect(), theme.canvas);
    const auto area = videoRect();
    if (m_hasPlayed && m_frame.isValid()) {
        // Into its own shape, for it fills the rest with black.
        m_frame.paint(&painter, fitted(uprightSize(m_frame), area), {});
    } else if (!m_poster.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(fitted(m_poster.size(), area), m_poster);
    } else {
        constexpr int film = 56;
        painter.drawPixmap(area.center() - QPoint{film / 2, film / 2},
                           symbol(u"film", film, theme.tertiaryText, devicePixelRatioF()));
    }
    if (isPlaying() || m_hasFailed) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.overlay);
    QRect badge{0, 0, playBadge, playBadge};
    badge.moveCenter(area.center());
    painter.drawEllipse(badge);
    constexpr int glyph = 32;
    // A triangle's weight lies left of its middle.
    painter.drawPixmap(badge.center() - QPoint{glyph / 2 - 3, glyph / 2 - 1},
                       symbol(u"play.fill", glyph, theme.onOverlay, devicePixelRatioF()));
}

void LoupeVideoPlayer::resizeEvent(QResizeEvent*) {
    m_controls->setGeometry(0, height() - controlsHeight, width(), controlsHeight);
}

void LoupeVideoPlayer::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && videoRect().contains(event->position().toPoint()))
        return togglePlayback();
    QWidget::mousePressEvent(event);
}

void LoupeVideoPlayer::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_K && event->modifiers() == Qt::NoModifier) return togglePlayback();
    QWidget::keyPressEvent(event);
}

} // namespace kelvara
