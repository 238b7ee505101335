#pragma once

#include "platform/Volumes.h"
#include "platform/linux/BlockDevices.h"
#include "platform/linux/MountWatch.h"
#include "platform/linux/MountedVolumes.h"
#include "platform/linux/UDisksClient.h"
#include "platform/linux/VolumeProbe.h"

#include <QDBusConnection>
#include <chrono>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace kelvara {

/// The volumes that UDisks knows; while it does not run, those in the kernel's mount table, which can't be
/// ejected. A volume whose disk has never answered within the patience is left out until it does, and then
/// reported as mounted.
class UDisksVolumes : public Volumes {
public:
    /// How the machine is looked at; tests look elsewhere.
    struct Machine {
        std::function<std::vector<MountEntry>()> mountTable = [] { return readMountTable(); };
        std::function<std::optional<bool>(const MountEntry&)> isRemovable = [](const MountEntry& entry) {
            return isRemovableDevice(entry);
        };
        VolumeProbe::Look look = readVolumeFacts;
        std::chrono::milliseconds patience{3000};
    };

    /// `bus` is the system bus.
    explicit UDisksVolumes(const QDBusConnection& bus) : UDisksVolumes{bus, Machine{}} {}
    UDisksVolumes(const QDBusConnection& bus, Machine machine);
    ~UDisksVolumes() override;

    /// Whether it knows by now which source lists the volumes; requests for the list wait for that.
    [[nodiscard]] bool isSettled() const { return m_isSettled; }

    void list(std::function<void(std::vector<VolumeInfo>)> onAnswer) override;
    void observe(std::function<void(const VolumeChange&)> onChange) override {
        m_onChange = std::move(onChange);
    }
    void eject(const FileURL& volume, std::function<void(Result<void, std::string>)> onEnd) override;

private:
    struct Listing;
    struct Ejection;

    enum class Reason { event, otherSource };

    [[nodiscard]] std::vector<MountedVolume> mounted() const;
    void sourceChanged();
    void update(Reason reason);
    void notify(const std::vector<VolumeChange>& changes);
    void start(const std::shared_ptr<Listing>& listing);
    void examined(const std::shared_ptr<Listing>& listing, const FileURL& volume,
                  const std::optional<VolumeFacts>& facts);
    void continueEjection(const std::shared_ptr<Ejection>& ejection);

    QObject m_receiver; // of what happens later; nothing does once it is gone
    Machine m_machine;
    UDisksClient m_client;
    MountWatch m_watch;
    VolumeProbe m_probe;
    std::function<void(const VolumeChange&)> m_onChange;

    bool m_isSettled = false; // whether UDisks has answered, or will not soon
    bool m_usesUDisks = false;
    std::set<FileURL> m_known;                       // mount points, as last told
    std::map<FileURL, VolumeFacts> m_facts;          // of those, as last read
    std::vector<std::shared_ptr<Listing>> m_waiting; // for the first source
};

} // namespace kelvara
