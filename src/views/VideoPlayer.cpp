#include "views/VideoPlayer.h"

#include "views/LocalURL.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QVideoSink>

namespace kelvara {

namespace {

class MediaVideoPlayer final : public VideoPlayer {
public:
    MediaVideoPlayer() {
        m_player.setVideoSink(&m_sink);
        // Some back ends crash over a sound output that no device stands behind.
        if (!QMediaDevices::audioOutputs().isEmpty()) {
            m_sound = std::make_unique<QAudioOutput>();
            m_player.setAudioOutput(m_sound.get());
            connect(m_sound.get(), &QAudioOutput::mutedChanged, this, &VideoPlayer::changed);
        }
        connect(&m_sink, &QVideoSink::videoFrameChanged, this, &VideoPlayer::frameArrived);
        connect(&m_player, &QMediaPlayer::playbackStateChanged, this, &VideoPlayer::changed);
        connect(&m_player, &QMediaPlayer::positionChanged, this, &VideoPlayer::changed);
        connect(&m_player, &QMediaPlayer::durationChanged, this, &VideoPlayer::changed);
        connect(&m_player, &QMediaPlayer::errorOccurred, this, &VideoPlayer::failed);
    }
    ~MediaVideoPlayer() override {
        // The player lets go of sink and sound before they end.
        m_player.stop();
        m_player.setVideoSink(nullptr);
        m_player.setAudioOutput(nullptr);
    }

    void open(const FileURL& url) override {
        m_player.stop();
        if (url.isEmpty()) return m_player.setSource({});
        m_player.setSource(toQUrl(url));
    }
    void play() override { m_player.play(); }
    void pause() override { m_player.pause(); }
    void seek(qint64 position) override { m_player.setPosition(position); }
    void setMuted(bool muted) override {
        if (m_sound) m_sound->setMuted(muted);
    }
    bool isPlaying() const override { return m_player.playbackState() == QMediaPlayer::PlayingState; }
    bool isMuted() const override { return !m_sound || m_sound->isMuted(); }
    bool hasSound() const override { return m_sound != nullptr; }
    qint64 position() const override { return m_player.position(); }
    qint64 duration() const override { return m_player.duration(); }

private:
    QVideoSink m_sink;
    std::unique_ptr<QAudioOutput> m_sound;
    QMediaPlayer m_player;
};

} // namespace

std::unique_ptr<VideoPlayer> VideoPlayer::make() { return std::make_unique<MediaVideoPlayer>(); }

} // namespace kelvara
