#include "presets/EditFile.h"

#include "presets/JSONMembers.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace kelvara::EditFile {

namespace {

/// That of millions of photos.
constexpr std::int64_t maximumBytes = std::int64_t{1} << 30;

struct Entry {
    JSONMember member;
    std::optional<FileURL> photo; // its stem key; empty for what is no photo's
};

std::string unquoted(std::string_view text) {
    if (text.find('\\') == std::string_view::npos) return std::string{text.substr(1, text.size() - 2)};
    const auto string = nlohmann::json::parse(text, nullptr, false);
    return string.is_string() ? string.get<std::string>() : std::string{};
}

std::optional<FileURL> photoOf(std::string_view key) {
    auto text = unquoted(key);
    const auto url = text.starts_with('/') ? FileURL{std::move(text)} : FileURL::fromURI(text);
    return url ? std::optional{url->stemKey()} : std::nullopt;
}

LightAdjustments adjustmentsIn(std::string_view object) {
    LightAdjustments light;
    for (const auto& member : jsonMembers(object).value_or(std::vector<JSONMember>{})) {
        const auto slider = LightAdjustments::fromRawValue(unquoted(member.key));
        if (!slider) continue;
        const auto value = nlohmann::json::parse(member.value, nullptr, false);
        if (value.is_number()) light.set(*slider, value.get<double>());
    }
    return light;
}

/// An object with these edits and what else stood in the one `before`; empty where that is nothing.
std::string objectText(const LightAdjustments& light, std::string_view before) {
    std::vector<std::string> members;
    for (const auto slider : LightAdjustments::sliders) {
        if (const double value = light[slider]; value != 0)
            members.push_back(fmt::format("\"{}\": {}", LightAdjustments::rawValue(slider), value));
    }
    for (const auto& member : jsonMembers(before).value_or(std::vector<JSONMember>{})) {
        if (!LightAdjustments::fromRawValue(unquoted(member.key)))
            members.push_back(fmt::format("{}: {}", member.key, member.value));
    }
    return members.empty() ? std::string{} : fmt::format("{{{}}}", fmt::join(members, ", "));
}

/// Empty for a file that is damaged or missing.
std::optional<std::vector<Entry>> entriesIn(std::string_view text) {
    const auto members = jsonMembers(text);
    if (!members) return std::nullopt;
    std::vector<Entry> entries;
    entries.reserve(members->size());
    for (const auto& member : *members) entries.push_back({member, photoOf(member.key)});
    return entries;
}

Edits editsIn(const std::vector<Entry>& entries) {
    Edits edits;
    for (const auto& [member, photo] : entries) {
        if (!photo) continue;
        if (const auto light = adjustmentsIn(member.value); !light.isEmpty())
            edits.insert_or_assign(*photo, light);
    }
    return edits;
}

/// The file's text with one line a member.
std::string changedText(const std::vector<Entry>& entries, const Edits& changes) {
    std::string text;
    const auto add = [&text](std::string_view key, std::string_view value) {
        if (!value.empty())
            fmt::format_to(std::back_inserter(text), "{}\n {}: {}", text.empty() ? "" : ",", key, value);
    };
    const auto addChanged = [&add](const FileURL& photo, const LightAdjustments& light,
                                   std::string_view before) {
        add(fmt::format("\"{}\"", photo.uri()), objectText(light, before));
    };
    std::unordered_set<FileURL> changed;
    for (const auto& [member, photo] : entries) {
        const auto change = photo ? changes.find(*photo) : changes.end();
        if (change == changes.end()) {
            add(member.key, member.value);
        } else if (changed.insert(*photo).second) { // a photo may be there under two spellings
            addChanged(*photo, change->second, member.value);
        }
    }
    for (const auto& [photo, light] : changes) {
        if (!changed.contains(photo)) addChanged(photo, light, {});
    }
    return fmt::format("{{{}\n}}\n", text);
}

/// Empty for a file that isn't there.
Result<std::string, FileError> textOf(const FileSystem& files, const FileURL& url) {
    auto text = files.readFile(url, maximumBytes);
    if (!text && text.error().code == std::errc::no_such_file_or_directory) return std::string{};
    return text;
}

/// Somebody may still mend it.
Result<void, FileError> putAside(FileSystem& files, const FileURL& url) {
    const auto name = url.appendingExtension("damaged");
    auto moved = files.moveFile(url, name);
    for (int i = 1; !moved && moved.error().code == std::errc::file_exists; ++i) {
        moved = files.moveFile(url, name.appendingExtension(std::to_string(i)));
    }
    return moved;
}

} // namespace

Result<Edits, FileError> read(const FileSystem& files, const FileURL& url) {
    const auto text = textOf(files, url);
    if (!text) return Failure{text.error()};
    const auto entries = entriesIn(*text);
    return entries ? editsIn(*entries) : Edits{};
}

Result<Edits, FileError> update(FileSystem& files, const FileURL& url, const Change& change) {
    if (const auto folder = files.createFolders(url.parent()); !folder) return Failure{folder.error()};
    const auto lock = files.lock(url);
    if (!lock) return Failure{lock.error()};
    const auto text = textOf(files, url);
    if (!text) return Failure{text.error()};
    const auto entries = entriesIn(*text);
    if (!entries && !text->empty()) {
        if (const auto moved = putAside(files, url); !moved) return Failure{moved.error()};
    }
    auto edits = entries ? editsIn(*entries) : Edits{};
    const auto changes = change(entries ? &edits : nullptr);
    const auto newText = changedText(entries.value_or(std::vector<Entry>{}), changes);
    if (const auto written = files.writeFileAtomically(url, newText); !written)
        return Failure{written.error()};
    for (const auto& [photo, light] : changes) {
        if (light.isEmpty())
            edits.erase(photo);
        else
            edits.insert_or_assign(photo, light);
    }
    return edits;
}

} // namespace kelvara::EditFile
