#include "platform/linux/LinuxDesktop.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <utility>

namespace kelvara {

namespace {

/// Escapes the path's bytes one by one, so that a name that is no UTF-8 still names its file.
QString fileURI(const FileURL& url) {
    return QStringLiteral("file://") +
           QString::fromLatin1(QByteArray::fromStdString(url.path()).toPercentEncoding("/"));
}

bool isFolder(const QString& path) { return QFileInfo{path}.isDir(); }

} // namespace

LinuxDesktop::LinuxDesktop(const QDBusConnection& sessionBus, std::function<void()> beep, QString opener)
    : m_sessionBus{sessionBus}, m_beep{std::move(beep)}, m_opener{std::move(opener)} {}

void LinuxDesktop::beep() {
    if (m_beep) m_beep();
}

void LinuxDesktop::showInFileManager(const FileURL& url) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{fileURI(url)} << QString{};
    auto* reply = new QDBusPendingCallWatcher{m_sessionBus.asyncCall(call), &m_calls};
    QObject::connect(reply, &QDBusPendingCallWatcher::finished, &m_calls, [this, url, reply] {
        const QDBusPendingReply<> answer = *reply;
        reply->deleteLater();
        // A file manager that is merely slow to start still shows the file; a second window would not help.
        if (answer.isError() && answer.error().type() != QDBusError::NoReply) openFolder(url.parent());
    });
}

/// A URI, because a program's arguments pass through a text that holds no byte but UTF-8.
void LinuxDesktop::openFolder(const FileURL& folder) const {
    QProcess::startDetached(m_opener, {fileURI(folder)});
}

FileURL LinuxDesktop::picturesFolder() const {
    const auto pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const auto folder = isFolder(pictures) ? pictures : QDir::homePath();
    return FileURL::standardized(QFile::encodeName(folder).toStdString());
}

FileURL LinuxDesktop::mediaFolder() const {
    const auto user = qEnvironmentVariable("USER");
    for (const auto* parent : {"/run/media", "/media"}) {
        const auto folder = QString::fromLatin1(parent) + u'/' + user;
        if (!user.isEmpty() && isFolder(folder)) return FileURL{QFile::encodeName(folder).toStdString()};
    }
    return FileURL{isFolder(QStringLiteral("/media")) ? "/media" : "/"};
}

} // namespace kelvara
