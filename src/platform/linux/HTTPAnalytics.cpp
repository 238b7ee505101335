#include "platform/linux/HTTPAnalytics.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QQueue>

#include <atomic>
#include <utility>

namespace kelvara {

namespace {

constexpr int patience = 15'000; // milliseconds

struct Description {
    QString name;
    QJsonObject properties;
};

Description description(const AppStarted&) { return {QStringLiteral("app_started"), {}}; }
Description description(const PhotosCopied& copied) {
    return {QStringLiteral("photos_copied"),
            {{QStringLiteral("count"), static_cast<qint64>(copied.count)},
             {QStringLiteral("with_preset"), copied.withPreset}}};
}
Description description(const PhotosShared& shared) {
    return {QStringLiteral("photos_shared"),
            {{QStringLiteral("count"), static_cast<qint64>(shared.count)},
             {QStringLiteral("airdrop"), shared.byAirDrop},
             {QStringLiteral("with_preset"), shared.withPreset},
             {QStringLiteral("with_edits"), shared.withEdits}}};
}

QByteArray document(const UsageEvent& event, const HTTPAnalytics::Versions& versions) {
    auto [name, properties] = std::visit([](const auto& known) { return description(known); }, event);
    properties.insert(QStringLiteral("app_version"), versions.application);
    properties.insert(QStringLiteral("os_version"), versions.system);
    return QJsonDocument{
        QJsonObject{{QStringLiteral("event"), name}, {QStringLiteral("properties"), properties}}}
        .toJson(QJsonDocument::Compact);
}

/// Nothing that would tell one user from another goes along: no cookie, no language, no system in the agent.
QNetworkRequest makeRequest(const QUrl& address) {
    QNetworkRequest request{address};
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Kelvara"));
    request.setRawHeader("Accept-Language", "*");
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setTransferTimeout(patience);
    return request;
}

} // namespace

/// All but `admit` on the client's thread.
class HTTPAnalytics::Sender : public QObject {
public:
    explicit Sender(const QUrl& address) : m_request{makeRequest(address)} {}

    /// Whether there is room for one more. Any thread; `send` has to follow.
    bool admit() {
        if (m_underWay.fetch_add(1) < maximumUnderWay) return true;
        --m_underWay;
        return false;
    }
    void send(const QByteArray& document) {
        m_waiting.enqueue(document);
        sendNext();
    }
    void forget() {
        m_underWay -= static_cast<int>(m_waiting.size());
        m_waiting.clear();
        if (m_reply) m_reply->abort(); // which finishes it
    }
    void end() {
        m_waiting.clear();
        delete std::exchange(m_network, nullptr); // and its reply
    }

private:
    void sendNext() {
        if (m_reply || m_waiting.isEmpty()) return;
        if (!m_network) m_network = new QNetworkAccessManager{this};
        m_reply = m_network->post(m_request, m_waiting.dequeue());
        connect(m_reply, &QNetworkReply::finished, this, [this] {
            std::exchange(m_reply, nullptr)->deleteLater();
            --m_underWay;
            sendNext();
        });
    }

    const QNetworkRequest m_request;
    QNetworkAccessManager* m_network = nullptr; // made on the thread that uses it
    QNetworkReply* m_reply = nullptr;
    QQueue<QByteArray> m_waiting;
    std::atomic<int> m_underWay = 0;
};

HTTPAnalytics::HTTPAnalytics(const QUrl& address, Versions versions) : m_versions{std::move(versions)} {
    const auto scheme = address.scheme();
    if (!address.isValid() || (scheme != u"https" && scheme != u"http")) return;
    m_sender = std::make_unique<Sender>(address);
    m_sender->moveToThread(&m_thread);
}

HTTPAnalytics::~HTTPAnalytics() {
    if (!m_thread.isRunning()) return;
    QMetaObject::invokeMethod(
        m_sender.get(), [sender = m_sender.get()] { sender->end(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void HTTPAnalytics::record(const UsageEvent& event) {
    if (!m_sender || !m_sender->admit()) return;
    if (!m_thread.isRunning()) m_thread.start(QThread::LowPriority);
    QMetaObject::invokeMethod(
        m_sender.get(),
        [sender = m_sender.get(), document = document(event, m_versions)] { sender->send(document); },
        Qt::QueuedConnection);
}

void HTTPAnalytics::forget() {
    if (!m_sender) return;
    QMetaObject::invokeMethod(
        m_sender.get(), [sender = m_sender.get()] { sender->forget(); }, Qt::QueuedConnection);
}

} // namespace kelvara
