#pragma once

#include "model/FileURL.h"

#include <cstddef>
#include <stop_token>
#include <string>
#include <vector>

namespace kelvara {

class FileSystem;

/// What became of an import.
struct PresetImportReport {
    std::vector<std::string> imported; ///< Ids of the new presets.
    std::size_t alreadyThere = 0;      ///< Presets that the folder had already.
    std::vector<std::string> problems; ///< What was not imported and why, a sentence each.
    std::string failure;               ///< What ended the import early; empty when nothing did.
    bool wasCancelled = false;

    /// Makes it the report of both.
    void add(PresetImportReport later);
    [[nodiscard]] bool foundNone() const { return imported.empty() && alreadyThere == 0; }
    friend bool operator==(const PresetImportReport&, const PresetImportReport&) = default;
};

/// Copies the presets among `sources`, which are files, folders and ".zip" archives, into `folder`. A preset
/// from a folder or an archive comes into a folder of its name and keeps its place below it. Nothing is
/// replaced: a preset of a name that is taken gets the next number, or is left out where it is the same.
///
/// Blocks, and stops soon after `stop` is requested, with whole files only.
[[nodiscard]] PresetImportReport importPresets(FileSystem& files, const std::vector<FileURL>& sources,
                                               const FileURL& folder, const std::stop_token& stop);

} // namespace kelvara
