#include "platform/linux/DesktopPortal.h"

#include "platform/FileSystem.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileWriting.h"
#include "platform/linux/PortalRequest.h"
#include "platform/linux/ShareProblem.h"

#include <QPointer>
#include <fcntl.h>
#include <utility>

namespace kelvara {

namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");

QString fullName(const QString& interface) { return QStringLiteral("org.freedesktop.portal.") + interface; }

Result<DesktopPortal::Descriptors, FileError> opened(const std::vector<FileURL>& files) {
    DesktopPortal::Descriptors descriptors;
    for (const auto& file : files) {
        const FileDescriptor descriptor{::open(file.path().c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
        if (!descriptor.isOpen()) return Failure{fileError(file)};
        descriptors.append(QDBusUnixFileDescriptor{descriptor.get()}); // which duplicates it
    }
    return descriptors;
}

} // namespace

void DesktopPortal::find(const QString& interface, std::function<void(bool)> onFound) {
    auto call = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    m_calls.call(
        call << fullName(interface) << QStringLiteral("version"),
        [onFound = std::move(onFound)](const QDBusMessage& reply) {
            onFound(reply.type() == QDBusMessage::ReplyMessage);
        },
        findingPatience);
}

void DesktopPortal::request(Request request, std::vector<FileURL> files, SharePicker::OnEnd onEnd) {
    m_background.post([this, alive = std::weak_ptr{m_lifetime}, &main = m_main, request = std::move(request),
                       files = std::move(files), onEnd = std::move(onEnd)] {
        main.post([this, alive, request, onEnd, descriptors = opened(files)] {
            if (alive.expired()) return;
            if (!descriptors) return onEnd(Failure{message(descriptors.error())});
            send(request, *descriptors, onEnd);
        });
    });
}

void DesktopPortal::send(const Request& request, const Descriptors& files, SharePicker::OnEnd onEnd) {
    const auto token = QStringLiteral("kelvara%1").arg(++m_tokens);
    const auto sender = m_calls.bus().baseService().mid(1).replace(u'.', u'_'); // ":1.42"
    const QPointer answer{new PortalRequest{m_calls.bus(),
                                            path + QStringLiteral("/request/%1/%2").arg(sender, token),
                                            request.problem, std::move(onEnd), &m_requests}};
    auto [values, options] = request.arguments(files);
    options.insert(QStringLiteral("handle_token"), token);
    const QString noWindow;
    auto call = QDBusMessage::createMethodCall(service, path, fullName(request.interface), request.method);
    call.setArguments(QVariantList{noWindow} + values + QVariantList{options});
    m_calls.call(call, [answer](const QDBusMessage& reply) {
        if (answer && reply.type() == QDBusMessage::ErrorMessage) answer->fail();
    });
}

} // namespace kelvara
