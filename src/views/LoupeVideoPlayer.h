#pragma once

#include "views/VideoPlayer.h"

#include <QImage>
#include <QWidget>

#include <functional>
#include <memory>

class QLabel;
class QSlider;
class QToolButton;

namespace kelvara {

/// A video in the loupe: its poster until it plays, and controls under it. A click or `togglePlayback` plays.
class LoupeVideoPlayer : public QWidget {
    Q_OBJECT

public:
    using MakePlayer = std::function<std::unique_ptr<VideoPlayer>()>;

    /// The player is made when the first video is opened, for that takes its time.
    explicit LoupeVideoPlayer(MakePlayer makePlayer, QWidget* parent = nullptr);

    /// Shows another video, paused at its poster. An empty URL stops and closes.
    void open(const FileURL& url);
    /// What is seen before the first frame.
    void setPoster(const QImage& poster);
    void togglePlayback();
    [[nodiscard]] bool isPlaying() const { return m_player && m_player->isPlaying(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void makeControls();
    void makePlayer();
    void refresh();
    [[nodiscard]] QRect videoRect() const;

    MakePlayer m_makePlayer;
    std::unique_ptr<VideoPlayer> m_player;
    FileURL m_url;
    QImage m_poster;
    QVideoFrame m_frame;
    bool m_hasPlayed = false;
    bool m_hasFailed = false;
    QWidget* m_controls;
    QToolButton* m_playButton;
    QToolButton* m_muteButton;
    QSlider* m_slider;
    QLabel* m_time;
};

} // namespace kelvara
