#pragma once

#include "platform/Desktop.h"
#include "platform/FolderChooser.h"
#include "platform/Preferences.h"
#include "platform/Volumes.h"

#include <map>
#include <utility>
#include <variant>
#include <vector>

namespace kelvara {

/// Preferences that live as long as the test.
class MemoryPreferences : public Preferences {
public:
    std::optional<bool> boolean(std::string_view key) const override { return get<bool>(key); }
    std::optional<std::int64_t> integer(std::string_view key) const override {
        return get<std::int64_t>(key);
    }
    std::optional<double> number(std::string_view key) const override { return get<double>(key); }
    std::optional<std::string> text(std::string_view key) const override { return get<std::string>(key); }
    std::optional<std::vector<std::string>> texts(std::string_view key) const override {
        return get<std::vector<std::string>>(key);
    }
    void setBoolean(std::string_view key, bool value) override { set(key, value); }
    void setInteger(std::string_view key, std::int64_t value) override { set(key, value); }
    void setNumber(std::string_view key, double value) override { set(key, value); }
    void setText(std::string_view key, const std::string& value) override { set(key, value); }
    void setTexts(std::string_view key, const std::vector<std::string>& value) override { set(key, value); }
    void remove(std::string_view key) override { m_values.erase(std::string{key}); }

private:
    using Value = std::variant<bool, std::int64_t, double, std::string, std::vector<std::string>>;
    template <typename T> std::optional<T> get(std::string_view key) const {
        const auto found = m_values.find(std::string{key});
        if (found == m_values.end() || !std::holds_alternative<T>(found->second)) return std::nullopt;
        return std::get<T>(found->second);
    }
    void set(std::string_view key, Value value) { m_values[std::string{key}] = std::move(value); }
    std::map<std::string, Value> m_values;
};

/// Keeps what was asked; the test answers.
class FakeFolderChooser : public FolderChooser {
public:
    void choose(const Request& request, std::function<void(std::optional<Choice>)> onEnd) override {
        requests.push_back(request);
        m_onEnd = std::move(onEnd);
    }
    void answer(std::optional<Choice> choice) { std::exchange(m_onEnd, {})(std::move(choice)); }

    std::vector<Request> requests;

private:
    std::function<void(std::optional<Choice>)> m_onEnd;
};

/// Volumes that the test mounts, listed at once.
class FakeVolumes : public Volumes {
public:
    void list(std::function<void(std::vector<VolumeInfo>)> onAnswer) override { onAnswer(mounted); }
    void observe(std::function<void(const VolumeChange&)> onChange) override {
        m_onChange = std::move(onChange);
    }
    void eject(const FileURL& volume, std::function<void(Result<void, std::string>)> onEnd) override {
        ejected.push_back(volume);
        onEjected = std::move(onEnd);
    }
    void mount(const VolumeInfo& volume) {
        mounted.push_back(volume);
        if (m_onChange) m_onChange({volume.url, false});
    }
    void unmount(const FileURL& url) {
        std::erase_if(mounted, [&](const VolumeInfo& volume) { return volume.url == url; });
        if (m_onChange) m_onChange({url, true});
    }

    std::vector<VolumeInfo> mounted;
    std::vector<FileURL> ejected;
    std::function<void(Result<void, std::string>)> onEjected;

private:
    std::function<void(const VolumeChange&)> m_onChange;
};

class FakeDesktop : public Desktop {
public:
    void beep() override { ++beeps; }
    void showInFileManager(const FileURL& url) override { shown.push_back(url); }
    FileURL picturesFolder() const override { return FileURL{"/home/me/Pictures"}; }
    FileURL mediaFolder() const override { return FileURL{"/media"}; }

    int beeps = 0;
    std::vector<FileURL> shown;
};

} // namespace kelvara
