#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QMap>

#include <functional>

namespace kelvara {

/// A service on a private bus that notes what it is asked and answers as the test says; empty by default.
class BusDouble : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls.append(message);
        const auto answer = answers.value(message.member());
        const auto reply = answer ? answer(message) : message.createReply();
        return reply.type() == QDBusMessage::InvalidMessage || connection.send(reply); // invalid: not yet
    }

    QList<QDBusMessage> calls;
    QMap<QString, std::function<QDBusMessage(const QDBusMessage&)>> answers;
};

} // namespace kelvara
