#pragma once

#include "async/Executor.h"
#include "platform/SharePicker.h"
#include "platform/linux/BusCalls.h"

#include <QDBusUnixFileDescriptor>
#include <QList>
#include <QString>
#include <QVariantMap>
#include <memory>

namespace kelvara {

/// The desktop portal, which shows people a dialog of their desktop on a program's behalf. Main thread.
class DesktopPortal {
public:
    using Descriptors = QList<QDBusUnixFileDescriptor>;

    /// A dialog about files.
    struct Request {
        struct Arguments {
            QVariantList values; ///< Between the window and the options.
            QVariantMap options;
        };
        QString interface; ///< "Email" for "org.freedesktop.portal.Email".
        QString method;
        std::function<Arguments(const Descriptors&)> arguments;
        std::string problem; ///< The sentence for its failure.
    };

    /// Files are opened on `background`; both executors outlive it.
    DesktopPortal(const QDBusConnection& sessionBus, Executor& background, Executor& main)
        : m_calls{sessionBus}, m_background{background}, m_main{main} {}

    /// Whether this desktop's portal has the interface.
    void find(const QString& interface, std::function<void(bool)> onFound);
    /// `onEnd` is not called where the user closes the dialog.
    void request(Request request, std::vector<FileURL> files, SharePicker::OnEnd onEnd);

private:
    void send(const Request& request, const Descriptors& files, SharePicker::OnEnd onEnd);

    BusCalls m_calls;
    Executor& m_background;
    Executor& m_main;
    QObject m_requests; // parent of those whose dialogs are open
    int m_tokens = 0;
    std::shared_ptr<int> m_lifetime = std::make_shared<int>(0); // gone with it
};

} // namespace kelvara
