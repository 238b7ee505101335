#pragma once

#include "platform/Preferences.h"

#include <QString>
#include <QVariant>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace kelvara {

/// Preferences in an INI file. They are read once, when it is made; changes are written behind the caller's
/// back by a thread of its own, together where they come close together, and the last of them at its end.
///
/// Keys of the file that the program does not know stay in it. A file that can't be written costs only the
/// memory of what was set, and is reported once on stderr.
class SettingsPreferences : public Preferences {
public:
    /// `path` and the folders above it need not exist.
    explicit SettingsPreferences(QString path);
    ~SettingsPreferences() override;
    SettingsPreferences(const SettingsPreferences&) = delete;
    SettingsPreferences& operator=(const SettingsPreferences&) = delete;

    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;
    [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override;
    [[nodiscard]] std::optional<double> number(std::string_view key) const override;
    [[nodiscard]] std::optional<std::string> text(std::string_view key) const override;
    [[nodiscard]] std::optional<std::vector<std::string>> texts(std::string_view key) const override;

    void setBoolean(std::string_view key, bool value) override;
    void setInteger(std::string_view key, std::int64_t value) override;
    void setNumber(std::string_view key, double value) override;
    void setText(std::string_view key, const std::string& value) override;
    void setTexts(std::string_view key, const std::vector<std::string>& value) override;
    void remove(std::string_view key) override;

private:
    using Values = std::map<std::string, QVariant, std::less<>>;

    void set(std::string_view key, const QVariant& value);
    void change(std::string_view key, const std::optional<QVariant>& value);
    void writeUntilStopped(const std::stop_token& stop);

    const QString m_path;
    Values m_values; // main thread only

    std::mutex m_mutex;
    std::condition_variable_any m_wake;
    std::map<std::string, std::optional<QVariant>> m_pending; // empty: to be removed; guarded by m_mutex
    std::jthread m_writer;                                    // last, so that it ends before what it uses
};

} // namespace kelvara
