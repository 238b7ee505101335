#pragma once

#include "model/FileURL.h"
#include "platform/FileSystem.h"
#include "presets/DevelopPreset.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace kelvara {

/// Whether the name is one of a preset file: "xmp" or "lrtemplate", in any case.
[[nodiscard]] bool isPresetFile(const FileURL& file);

/// The preset files in `folder` and below, by path; fewer once `stop` is requested. Blocks.
[[nodiscard]] Result<std::vector<FileURL>, FileError>
presetFiles(const FileSystem& files, const FileURL& folder, const std::stop_token& stop);

/// What a file in the folder "Presets" is known by: its path within it.
[[nodiscard]] std::string presetID(const FileURL& file, const FileURL& folder);

/// A file in the folder "Presets".
struct FolderPreset {
    FileURL url;
    std::string category; ///< The file's group, else its folders; in the user's words.
    std::shared_ptr<const DevelopPreset> preset;
    std::size_t contentHash = 0;
    friend bool operator==(const FolderPreset&, const FolderPreset&) = default;
};

/// By id.
using FolderPresets = std::map<std::string, FolderPreset, std::less<>>;

/// All presets in `folder` and below; other files are passed over. A file whose content is that of `known`
/// keeps its preset, revision included. Empty where the folder could not be read, or reading was stopped; a
/// folder that is missing has none. Blocks.
[[nodiscard]] std::optional<FolderPresets> readPresetFolder(const FileSystem& files, const FileURL& folder,
                                                            const FolderPresets& known,
                                                            const std::stop_token& stop);

} // namespace kelvara
