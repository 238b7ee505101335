#include "platform/linux/VolumeProbe.h"

#include <QMetaObject>
#include <QPointer>
#include <limits>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>
#include <utility>

namespace kelvara {

namespace {

std::int64_t byteCount(fsblkcnt_t blocks, unsigned long blockSize) {
    constexpr auto maximum = std::numeric_limits<std::int64_t>::max();
    if (blockSize != 0 && blocks > static_cast<fsblkcnt_t>(maximum) / blockSize) return maximum;
    return static_cast<std::int64_t>(blocks * blockSize);
}

} // namespace

std::optional<VolumeFacts> readVolumeFacts(const FileURL& volume) {
    struct statvfs values {};
    if (::statvfs(volume.path().c_str(), &values) != 0) return std::nullopt;
    const auto cameraFolder = volume.child("DCIM");
    struct stat ignored {};
    const bool hasCameraFolder = ::stat(cameraFolder.path().c_str(), &ignored) == 0;
    return VolumeFacts{.totalCapacity = byteCount(values.f_blocks, values.f_frsize),
                       .availableCapacity = byteCount(values.f_bavail, values.f_frsize),
                       .preferredSourceURL = hasCameraFolder ? cameraFolder : volume};
}

VolumeProbe::VolumeProbe(Look look) : m_look{std::move(look)}, m_mailbox{std::make_shared<Mailbox>()} {
    m_mailbox->probe = this;
}

VolumeProbe::~VolumeProbe() {
    const std::lock_guard lock{m_mailbox->mutex};
    m_mailbox->probe = nullptr;
}

void VolumeProbe::examine(const FileURL& volume, std::function<void(std::optional<VolumeFacts>)> onAnswer) {
    auto& waiting = m_waiting[volume];
    waiting.push_back(std::move(onAnswer));
    if (waiting.size() > 1) return;
    std::thread{[mailbox = m_mailbox, look = m_look, volume] {
        const auto facts = look(volume);
        const std::lock_guard lock{mailbox->mutex};
        if (mailbox->probe == nullptr) return;
        QMetaObject::invokeMethod(
            &mailbox->probe->m_receiver,
            [probe = mailbox->probe, volume, facts] { probe->finish(volume, facts); }, Qt::QueuedConnection);
    }}.detach();
}

void VolumeProbe::finish(const FileURL& volume, const std::optional<VolumeFacts>& facts) {
    auto waiting = m_waiting.extract(volume);
    const QPointer<QObject> alive{&m_receiver};
    for (auto& answer : waiting.mapped()) {
        if (!alive) return; // the answer before ended the probe
        answer(facts);
    }
}

} // namespace kelvara
