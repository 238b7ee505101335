#pragma once

#include "model/FileURL.h"

#include <QObject>
#include <QVideoFrame>

#include <memory>

namespace kelvara {

/// Plays one video file at a time. Main thread; times in milliseconds.
class VideoPlayer : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Opens a file, paused at its beginning. An empty URL closes the last one.
    virtual void open(const FileURL& url) = 0;
    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void seek(qint64 position) = 0;
    virtual void setMuted(bool muted) = 0;

    [[nodiscard]] virtual bool isPlaying() const = 0;
    [[nodiscard]] virtual bool isMuted() const = 0;
    /// Whether there is a device to hear it with.
    [[nodiscard]] virtual bool hasSound() const = 0;
    [[nodiscard]] virtual qint64 position() const = 0;
    [[nodiscard]] virtual qint64 duration() const = 0;

    /// The one that the desktop's multimedia framework gives.
    [[nodiscard]] static std::unique_ptr<VideoPlayer> make();

signals:
    void changed(); ///< Of anything above.
    void frameArrived(const QVideoFrame& frame);
    void failed();
};

} // namespace kelvara
