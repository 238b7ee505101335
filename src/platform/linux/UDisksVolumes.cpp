#include "platform/linux/UDisksVolumes.h"

#include "platform/linux/EjectProblem.h"

#include <QMetaObject>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace kelvara {

/// One request for the list, while its volumes are looked at.
struct UDisksVolumes::Listing {
    std::function<void(std::vector<VolumeInfo>)> onAnswer; // empty once answered
    std::vector<MountedVolume> volumes;
    std::map<FileURL, std::optional<VolumeFacts>> facts; // of those that have answered

    [[nodiscard]] bool isAnswered() const { return !onAnswer; }
    void answer() {
        std::vector<VolumeInfo> infos;
        for (const auto& volume : volumes) {
            const auto found = facts.find(volume.url);
            if (found == facts.end() || !found->second) continue;
            infos.push_back({.url = volume.url,
                             .name = volume.name,
                             .isRemovable = volume.isRemovable,
                             .totalCapacity = found->second->totalCapacity,
                             .availableCapacity = found->second->availableCapacity,
                             .preferredSourceURL = found->second->preferredSourceURL});
        }
        std::exchange(onAnswer, {})(std::move(infos));
    }
};

struct UDisksVolumes::Ejection {
    std::vector<EjectStep> steps;
    std::size_t next = 0;
    std::function<void(Result<void, std::string>)> onEnd;
};

namespace {

struct Method {
    QString interface;
    QString name;
};

Method method(EjectStep::Kind kind) {
    switch (kind) {
    case EjectStep::Kind::unmount:
        return {QStringLiteral("org.freedesktop.UDisks2.Filesystem"), QStringLiteral("Unmount")};
    case EjectStep::Kind::lock:
        return {QStringLiteral("org.freedesktop.UDisks2.Encrypted"), QStringLiteral("Lock")};
    case EjectStep::Kind::eject:
        return {QStringLiteral("org.freedesktop.UDisks2.Drive"), QStringLiteral("Eject")};
    case EjectStep::Kind::powerOff:
        break;
    }
    return {QStringLiteral("org.freedesktop.UDisks2.Drive"), QStringLiteral("PowerOff")};
}

/// Whether the step's purpose is met all the same: it was done already, or, once everything is unmounted, the
/// drive has gone or never could.
bool isHarmless(EjectStep::Kind kind, const QDBusError& error) {
    if (kind == EjectStep::Kind::unmount) {
        return error.name() == QStringLiteral("org.freedesktop.UDisks2.Error.NotMounted");
    }
    return error.type() == QDBusError::UnknownObject || error.type() == QDBusError::UnknownMethod ||
           error.type() == QDBusError::UnknownInterface ||
           error.name() == QStringLiteral("org.freedesktop.UDisks2.Error.NotSupported");
}

} // namespace

UDisksVolumes::UDisksVolumes(const QDBusConnection& bus, Machine machine)
    : m_machine{std::move(machine)}, m_client{bus}, m_watch{[this] {
          if (m_isSettled && !m_usesUDisks) update(Reason::event);
      }},
      m_probe{m_machine.look} {
    QObject::connect(&m_client, &UDisksClient::changed, &m_receiver, [this] { sourceChanged(); });
    QObject::connect(&m_client, &UDisksClient::vanished, &m_receiver, [this] { sourceChanged(); });
    // A disk service that hangs must not keep the list empty.
    QTimer::singleShot(m_machine.patience, &m_receiver, [this] {
        if (!m_isSettled) sourceChanged();
    });
}

UDisksVolumes::~UDisksVolumes() = default;

std::vector<MountedVolume> UDisksVolumes::mounted() const {
    return m_usesUDisks ? mountedVolumes(m_client.objects())
                        : mountedVolumes(m_machine.mountTable(), m_machine.isRemovable);
}

void UDisksVolumes::sourceChanged() {
    const bool isFirst = !std::exchange(m_isSettled, true);
    const bool isSame = std::exchange(m_usesUDisks, m_client.isPresent()) == m_client.isPresent();
    if (!isFirst) {
        update(isSame ? Reason::event : Reason::otherSource);
        return;
    }
    for (const auto& volume : mounted()) m_known.insert(volume.url);
    for (const auto& listing : std::exchange(m_waiting, {})) start(listing);
}

void UDisksVolumes::update(Reason reason) {
    std::set<FileURL> now;
    for (const auto& volume : mounted()) now.insert(volume.url);
    std::set<FileURL> stillMounted;
    if (reason == Reason::otherSource) {
        // What one source lists and the other does not need not have been unmounted.
        for (const auto& entry : m_machine.mountTable()) stillMounted.insert(FileURL{entry.mountPoint});
    }
    std::vector<VolumeChange> changes;
    for (const auto& url : m_known) {
        if (now.contains(url)) continue;
        m_facts.erase(url);
        if (!stillMounted.contains(url)) changes.push_back({url, true});
    }
    for (const auto& url : now) {
        if (!m_known.contains(url)) changes.push_back({url, false});
    }
    m_known = std::move(now);
    notify(changes);
}

void UDisksVolumes::notify(const std::vector<VolumeChange>& changes) {
    const QPointer<QObject> alive{&m_receiver};
    for (const auto& change : changes) {
        if (!alive) return; // the observer ended it
        // Copied, because the observer may set another one.
        if (const auto onChange = m_onChange) onChange(change);
    }
}

void UDisksVolumes::list(std::function<void(std::vector<VolumeInfo>)> onAnswer) {
    auto listing = std::make_shared<Listing>();
    listing->onAnswer = std::move(onAnswer);
    if (m_isSettled) {
        start(listing);
    } else {
        m_waiting.push_back(std::move(listing));
    }
}

void UDisksVolumes::start(const std::shared_ptr<Listing>& listing) {
    listing->volumes = mounted();
    if (listing->volumes.empty()) {
        QMetaObject::invokeMethod(
            &m_receiver, [listing] { listing->answer(); }, Qt::QueuedConnection);
        return;
    }
    for (const auto& volume : listing->volumes) {
        m_probe.examine(volume.url,
                        [this, listing, url = volume.url](const std::optional<VolumeFacts>& facts) {
                            examined(listing, url, facts);
                        });
    }
    QTimer::singleShot(m_machine.patience, &m_receiver, [this, listing] {
        if (listing->isAnswered()) return;
        // A volume that answered before is slow rather than dead.
        for (const auto& [url, facts] : m_facts) listing->facts.try_emplace(url, facts);
        listing->answer();
    });
}

void UDisksVolumes::examined(const std::shared_ptr<Listing>& listing, const FileURL& volume,
                             const std::optional<VolumeFacts>& facts) {
    const bool isMounted = m_known.contains(volume);
    const bool isNews = isMounted && facts && m_facts.insert_or_assign(volume, *facts).second;
    if (!facts) m_facts.erase(volume);
    if (!listing->isAnswered()) {
        listing->facts[volume] = facts;
        if (listing->facts.size() == listing->volumes.size()) listing->answer();
    } else if (isNews) {
        notify({{volume, false}}); // it was left out of that list
    }
}

void UDisksVolumes::eject(const FileURL& volume, std::function<void(Result<void, std::string>)> onEnd) {
    const auto steps = m_client.isPresent()
                           ? ejectSteps(m_client.objects(), volume)
                           : Result<std::vector<EjectStep>, std::string>{Failure{diskServiceIsMissing()}};
    if (!steps) {
        QMetaObject::invokeMethod(
            &m_receiver, [onEnd = std::move(onEnd), error = steps.error()] { onEnd(Failure{error}); },
            Qt::QueuedConnection);
        return;
    }
    auto ejection = std::make_shared<Ejection>();
    ejection->steps = steps.value();
    ejection->onEnd = std::move(onEnd);
    continueEjection(ejection);
}

void UDisksVolumes::continueEjection(const std::shared_ptr<Ejection>& ejection) {
    if (ejection->next == ejection->steps.size()) {
        ejection->onEnd({});
        return;
    }
    const auto& step = ejection->steps[ejection->next++];
    const auto [interface, name] = method(step.kind);
    m_client.call(QString::fromStdString(step.object), interface, name,
                  [this, ejection, &step](const std::optional<QDBusError>& error) {
                      if (error && !isHarmless(step.kind, *error)) {
                          ejection->onEnd(Failure{ejectProblem(error->name().toStdString(),
                                                               error->message().toStdString(), step.name)});
                          return;
                      }
                      continueEjection(ejection);
                  });
}

} // namespace kelvara
