#include "platform/linux/SettingsPreferences.h"

#include <QByteArray>
#include <QFile>
#include <QLocale>
#include <QSettings>
#include <QStringDecoder>
#include <QStringList>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

namespace kelvara {

namespace {

/// A slider or a window being dragged sets its key many times a second; one write serves them all.
constexpr std::chrono::milliseconds settleTime{200};

/// UTF-8 is kept as text, which a person can read in the file; other bytes as bytes.
QVariant storedText(const std::string& value) {
    const auto bytes = QByteArray::fromStdString(value);
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    QString text = decoder(bytes);
    // Compared as well, because a byte order mark is valid but would not come back.
    if (decoder.hasError() || text.toUtf8() != bytes) return bytes;
    return text;
}

std::optional<std::string> loadedText(const QVariant& value) {
    if (value.typeId() == QMetaType::QByteArray) return value.toByteArray().toStdString();
    if (value.typeId() == QMetaType::QString) return value.toString().toStdString();
    return std::nullopt;
}

/// The whole of `text` as a number, or nothing.
template <typename Number> std::optional<Number> parsed(const std::optional<std::string>& text) {
    if (!text) return std::nullopt;
    Number number{};
    const auto* end = text->data() + text->size();
    const auto [rest, error] = std::from_chars(text->data(), end, number);
    if (error != std::errc{} || rest != end) return std::nullopt;
    return number;
}

/// Whether everything is in the file now.
bool write(const QString& path, const std::map<std::string, std::optional<QVariant>>& changes) {
    QSettings file{path, QSettings::IniFormat};
    for (const auto& [key, value] : changes) {
        const auto name = QString::fromStdString(key);
        value ? file.setValue(name, *value) : file.remove(name);
    }
    file.sync();
    // A line of the file that is no setting is a format error, too, and hinders nothing.
    return file.status() != QSettings::AccessError;
}

} // namespace

SettingsPreferences::SettingsPreferences(QString path) : m_path{std::move(path)} {
    const QSettings file{m_path, QSettings::IniFormat};
    for (const auto& key : file.allKeys()) {
        if (!key.isEmpty()) m_values.insert_or_assign(key.toStdString(), file.value(key));
    }
    m_writer = std::jthread{[this](const std::stop_token& stop) { writeUntilStopped(stop); }};
}

SettingsPreferences::~SettingsPreferences() = default;

std::optional<std::string> SettingsPreferences::text(std::string_view key) const {
    const auto found = m_values.find(key);
    return found == m_values.end() ? std::nullopt : loadedText(found->second);
}

std::optional<bool> SettingsPreferences::boolean(std::string_view key) const {
    const auto value = text(key);
    if (value == "true") return true;
    if (value == "false") return false;
    return std::nullopt;
}

std::optional<std::int64_t> SettingsPreferences::integer(std::string_view key) const {
    return parsed<std::int64_t>(text(key));
}

std::optional<double> SettingsPreferences::number(std::string_view key) const {
    const auto value = parsed<double>(text(key));
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::vector<std::string>> SettingsPreferences::texts(std::string_view key) const {
    const auto found = m_values.find(key);
    if (found == m_values.end()) return std::nullopt;
    // The file writes a list of one like the one, and an empty list as no value.
    if (auto single = loadedText(found->second)) return std::vector{*std::move(single)};
    std::vector<std::string> result;
    for (const auto& element : found->second.toList()) {
        auto value = loadedText(element);
        if (!value) return std::nullopt;
        result.push_back(*std::move(value));
    }
    return result;
}

void SettingsPreferences::setBoolean(std::string_view key, bool value) {
    set(key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

void SettingsPreferences::setInteger(std::string_view key, std::int64_t value) {
    set(key, QString::number(value));
}

void SettingsPreferences::setNumber(std::string_view key, double value) {
    set(key, QString::number(value, 'g', QLocale::FloatingPointShortest));
}

void SettingsPreferences::setText(std::string_view key, const std::string& value) {
    set(key, storedText(value));
}

void SettingsPreferences::setTexts(std::string_view key, const std::vector<std::string>& value) {
    QVariantList list;
    for (const auto& element : value) list.append(storedText(element));
    set(key, list.size() == 1 ? list.front() : QVariant{list});
}

void SettingsPreferences::set(std::string_view key, const QVariant& value) {
    const auto found = m_values.find(key);
    if (found != m_values.end() && found->second == value) return;
    m_values.insert_or_assign(std::string{key}, value);
    change(key, value);
}

void SettingsPreferences::remove(std::string_view key) {
    const auto found = m_values.find(key);
    if (found == m_values.end()) return;
    m_values.erase(found);
    change(key, std::nullopt);
}

void SettingsPreferences::change(std::string_view key, const std::optional<QVariant>& value) {
    {
        const std::lock_guard lock{m_mutex};
        m_pending.insert_or_assign(std::string{key}, value);
    }
    m_wake.notify_one();
}

void SettingsPreferences::writeUntilStopped(const std::stop_token& stop) {
    bool hasReported = false;
    std::unique_lock lock{m_mutex};
    for (;;) {
        m_wake.wait(lock, stop, [this] { return !m_pending.empty(); });
        m_wake.wait_for(lock, stop, settleTime, [] { return false; });
        if (m_pending.empty()) return; // only once stopped
        const auto changes = std::exchange(m_pending, {});
        lock.unlock();
        if (!write(m_path, changes) && !std::exchange(hasReported, true)) {
            std::fprintf(stderr, "kelvara: the preferences can't be written to %s\n",
                         QFile::encodeName(m_path).constData());
        }
        lock.lock();
    }
}

} // namespace kelvara
