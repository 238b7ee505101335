#include "presets/PresetFolder.h"

#include "text/CaseFolding.h"
#include "text/Localized.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kelvara {

namespace {

class PresetFinder : public FolderWalkVisitor {
public:
    explicit PresetFinder(const std::stop_token& stop) : m_stop{stop} {}

    Answer met(std::string_view name) override {
        if (m_stop.stop_requested()) return Answer::stop;
        return isPresetFile(FileURL{std::string{"/"}.append(name)}) ? Answer::describe : Answer::pass;
    }
    void described(std::string_view folder, std::string_view name, const FileStatus& status) override {
        if (status.kind == FileStatus::Kind::file) {
            found.emplace_back(std::string{folder}.append(1, '/').append(name));
        }
    }

    std::vector<FileURL> found;

private:
    const std::stop_token& m_stop;
};

/// "Portraits / Soft" for "Portraits/Soft/Warm.xmp".
std::string category(const DevelopPreset& preset, const std::string& id) {
    if (preset.group && !preset.group->empty()) return *preset.group;
    const auto end = id.rfind('/');
    if (end == std::string::npos) return localized("Imported");
    std::string category;
    for (const char c : id.substr(0, end)) category += c == '/' ? " / " : std::string(1, c);
    return category;
}

} // namespace

bool isPresetFile(const FileURL& file) {
    const auto extension = caseFolded(file.extension());
    return extension == "xmp" || extension == "lrtemplate";
}

Result<std::vector<FileURL>, FileError> presetFiles(const FileSystem& files, const FileURL& folder,
                                                    const std::stop_token& stop) {
    PresetFinder finder{stop};
    if (const auto walked = files.walk(folder, finder); !walked) return Failure{walked.error()};
    // Folders list their files in no order.
    std::sort(finder.found.begin(), finder.found.end());
    return std::move(finder.found);
}

std::string presetID(const FileURL& file, const FileURL& folder) {
    return file.path().substr(folder.path().size() + 1);
}

std::optional<FolderPresets> readPresetFolder(const FileSystem& files, const FileURL& folder,
                                              const FolderPresets& known, const std::stop_token& stop) {
    const auto found = presetFiles(files, folder, stop);
    if (!found) {
        const auto isMissing = found.error().code == std::errc::no_such_file_or_directory;
        return isMissing ? std::optional{FolderPresets{}} : std::nullopt;
    }
    FolderPresets presets;
    for (const auto& url : *found) {
        if (stop.stop_requested()) return std::nullopt;
        const auto bytes = files.readFile(url, DevelopPreset::maximumFileSize);
        if (!bytes) continue;
        const auto hash = std::hash<std::string>{}(*bytes);
        const auto id = presetID(url, folder);
        if (const auto same = known.find(id); same != known.end() && same->second.contentHash == hash) {
            presets.insert(*same);
            continue;
        }
        auto preset = DevelopPreset::read(*bytes, url);
        if (!preset) continue;
        preset->id = id;
        const auto name = category(*preset, id);
        presets[id] = {url, name, std::make_shared<const DevelopPreset>(std::move(*preset)), hash};
    }
    if (stop.stop_requested()) return std::nullopt;
    return presets;
}

} // namespace kelvara
