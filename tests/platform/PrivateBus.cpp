#include "platform/PrivateBus.h"

#include "platform/EventLoop.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QProcessEnvironment>
#include <utility>

namespace kelvara {

namespace {

constexpr auto configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>unix:path=%1/bus</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>)";

// The distribution's interpreter has the distribution's packages; another one on the path may not.
const auto python = QStringLiteral("/usr/bin/python3");

} // namespace

PrivateBus::PrivateBus() {
    const auto file = m_folder.filePath(QStringLiteral("bus.conf"));
    QFile output{file};
    if (!output.open(QIODevice::WriteOnly)) {
        m_problem = "no temporary folder";
        return;
    }
    output.write(QString::fromLatin1(configuration).arg(m_folder.path()).toUtf8());
    output.close();
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--config-file=") + file, QStringLiteral("--nofork"),
                    QStringLiteral("--print-address=1")});
    if (!m_daemon.waitForStarted() || !m_daemon.waitForReadyRead()) {
        m_problem = "dbus-daemon could not be started";
        return;
    }
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
}

PrivateBus::~PrivateBus() {
    for (const auto& name : m_connections) QDBusConnection::disconnectFromBus(name);
    stop();
}

void PrivateBus::stop() {
    m_daemon.kill();
    m_daemon.waitForFinished();
}

QDBusConnection PrivateBus::connect() {
    static int count = 0;
    m_connections.append(QStringLiteral("private-%1").arg(++count));
    return QDBusConnection::connectToBus(m_address, m_connections.back());
}

bool PrivateBus::hasMocks() {
    return QProcess::execute(python, {QStringLiteral("-c"), QStringLiteral("import dbusmock")}) == 0;
}

std::unique_ptr<OwnedProcess> PrivateBus::startMock(const QString& templateFile, const QString& name) {
    auto bus = connect();
    QDBusServiceWatcher watcher{name, bus, QDBusServiceWatcher::WatchForRegistration};
    bool isThere = false;
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &watcher, [&] { isThere = true; });

    auto mock = std::make_unique<OwnedProcess>();
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), m_address);
    environment.insert(QStringLiteral("PYTHONDONTWRITEBYTECODE"), QStringLiteral("1"));
    mock->setProcessEnvironment(environment);
    mock->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    mock->setStandardOutputFile(QProcess::nullDevice());
    mock->start(python, {QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--template"),
                         QStringLiteral(KELVARA_PLATFORM_TESTS) + u'/' + templateFile});
    const auto ended = [&] { return mock->state() == QProcess::NotRunning; };
    if (!runUntil([&] { return isThere || ended(); }) || !isThere) return nullptr;
    return mock;
}

} // namespace kelvara
