#include "platform/linux/PortalTargets.h"

#include "text/Localized.h"

#include <QDBusMetaType>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <fmt/format.h>
#include <utility>

namespace kelvara {

namespace {

using Arguments = DesktopPortal::Request::Arguments;

const auto portalsEmail = QStringLiteral("Email");
const auto portalsOpener = QStringLiteral("OpenURI");

} // namespace

void EmailTarget::find(std::function<void(std::vector<ShareTarget>)> onFound) {
    m_portal.find(portalsEmail, [command = m_command, onFound = std::move(onFound)](bool hasPortal) {
        if (hasPortal) return onFound({ShareTarget{}});
        const auto program = QStandardPaths::findExecutable(command);
        if (program.isEmpty()) return onFound({});
        onFound({ShareTarget{QFile::encodeName(program).toStdString(), {}}});
    });
}

/// The target's ID is the command's file, or empty for the portal.
void EmailTarget::send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) {
    if (files.size() > maximumFiles) {
        return onEnd(Failure{
            fmt::format(fmt::runtime(localized("An e-mail takes {} photos at most. Share fewer at a time.")),
                        maximumFiles)});
    }
    const auto problem = localized("The e-mail couldn't be prepared.");
    if (to.id.empty()) {
        qDBusRegisterMetaType<DesktopPortal::Descriptors>();
        const auto attachments = [](const DesktopPortal::Descriptors& descriptors) {
            return Arguments{{}, {{QStringLiteral("attachment_fds"), QVariant::fromValue(descriptors)}}};
        };
        return m_portal.request({portalsEmail, QStringLiteral("ComposeEmail"), attachments, problem},
                                std::move(files), std::move(onEnd));
    }
    QStringList arguments;
    for (const auto& file : files)
        arguments << QStringLiteral("--attach") << QString::fromStdString(file.path());
    if (!QProcess::startDetached(QString::fromStdString(to.id), arguments)) return onEnd(Failure{problem});
    onEnd({});
}

void OtherProgramTarget::find(std::function<void(std::vector<ShareTarget>)> onFound) {
    m_portal.find(portalsOpener, [onFound = std::move(onFound)](bool hasPortal) {
        onFound(hasPortal ? std::vector{ShareTarget{}} : std::vector<ShareTarget>{});
    });
}

void OtherProgramTarget::send(const ShareTarget&, std::vector<FileURL> files, SharePicker::OnEnd onEnd) {
    files.resize(1);
    const auto file = [](const DesktopPortal::Descriptors& descriptors) {
        return Arguments{{QVariant::fromValue(descriptors.constFirst())}, {{QStringLiteral("ask"), true}}};
    };
    auto problem = fmt::format(fmt::runtime(localized("{} couldn't be opened with another program.")),
                               files.front().name());
    m_portal.request({portalsOpener, QStringLiteral("OpenFile"), file, std::move(problem)}, std::move(files),
                     std::move(onEnd));
}

} // namespace kelvara
