#pragma once

#include "model/FileURL.h"

#include <QObject>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace kelvara {

/// What only the disk itself can tell about a volume.
struct VolumeFacts {
    std::int64_t totalCapacity = 0;     ///< Bytes.
    std::int64_t availableCapacity = 0; ///< Bytes that this user may write.
    FileURL preferredSourceURL;         ///< See `VolumeInfo`.

    friend bool operator==(const VolumeFacts&, const VolumeFacts&) = default;
};

/// Empty when the volume can't be read. Blocks, for ever on a mount whose disk does not answer.
[[nodiscard]] std::optional<VolumeFacts> readVolumeFacts(const FileURL& volume);

/// Reads the facts of volumes off the main thread, each volume in a thread of its own. A look that never
/// ends costs that thread and nothing else: nobody waits for it, not even the end of the program.
class VolumeProbe {
public:
    using Look = std::function<std::optional<VolumeFacts>(const FileURL&)>;

    explicit VolumeProbe(Look look = readVolumeFacts);
    ~VolumeProbe();
    VolumeProbe(const VolumeProbe&) = delete;
    VolumeProbe& operator=(const VolumeProbe&) = delete;

    /// Answers later on the main thread, if at all. Shares a look at the same volume that is under way.
    void examine(const FileURL& volume, std::function<void(std::optional<VolumeFacts>)> onAnswer);

private:
    /// What the threads know of the probe.
    struct Mailbox {
        std::mutex mutex;
        VolumeProbe* probe = nullptr; // null once it is gone
    };

    void finish(const FileURL& volume, const std::optional<VolumeFacts>& facts);

    Look m_look;
    QObject m_receiver;
    std::shared_ptr<Mailbox> m_mailbox;
    std::map<FileURL, std::vector<std::function<void(std::optional<VolumeFacts>)>>> m_waiting;
};

} // namespace kelvara
