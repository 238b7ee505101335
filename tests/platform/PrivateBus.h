#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>
#include <string>

namespace kelvara {

/// A process that ends with its owner.
class OwnedProcess : public QProcess {
public:
    ~OwnedProcess() override {
        kill();
        waitForFinished();
    }
};

/// A message bus that only this test can reach, on which nothing is started by itself.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();

    /// Why there is no bus; empty when there is one.
    [[nodiscard]] const std::string& problem() const { return m_problem; }
    /// For other processes that are to use the bus.
    [[nodiscard]] const QString& address() const { return m_address; }
    /// A connection of its own at every call; closed with the bus.
    [[nodiscard]] QDBusConnection connect();

    /// Runs `template` (a file beside the tests' sources) of python3-dbusmock until it owns `name`; null
    /// where that package is missing.
    [[nodiscard]] std::unique_ptr<OwnedProcess> startMock(const QString& templateFile, const QString& name);
    [[nodiscard]] static bool hasMocks();

    void stop();

private:
    QTemporaryDir m_folder;
    OwnedProcess m_daemon;
    QString m_address;
    QStringList m_connections;
    std::string m_problem;
};

} // namespace kelvara
