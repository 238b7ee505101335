#pragma once

#include "async/Executor.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace kelvara {

/// Brings values to another thread that needs only the newest, such as how far a copy has come: one that has
/// not been delivered yet is replaced, so that a fast sender never floods the receiver. Thread-safe.
template <typename T> class NewestValue {
public:
    /// `receiver` outlives it and runs `deliver`.
    NewestValue(Executor& receiver, std::function<void(T)> deliver)
        : m_receiver{receiver}, m_mail{std::make_shared<Mail>(std::move(deliver))} {}

    void send(T value) const {
        const std::lock_guard lock{m_mail->mutex};
        const bool isOnItsWay = m_mail->value.has_value();
        m_mail->value = std::move(value);
        if (!isOnItsWay) m_receiver.post([mail = m_mail] { mail->deliver(mail->take()); });
    }

private:
    struct Mail {
        explicit Mail(std::function<void(T)> onDelivery) : deliver{std::move(onDelivery)} {}
        T take() {
            const std::lock_guard lock{mutex};
            return *std::exchange(value, std::nullopt);
        }
        const std::function<void(T)> deliver;
        std::mutex mutex;
        std::optional<T> value; // not delivered yet
    };

    Executor& m_receiver;
    std::shared_ptr<Mail> m_mail;
};

} // namespace kelvara
