#pragma once

#include "model/FileURL.h"
#include "model/LightAdjustments.h"
#include "model/Result.h"
#include "platform/FileSystem.h"

#include <functional>
#include <unordered_map>

/// The JSON file of all photos' light edits: "Edits.json". An object with a member for each photo, whose key
/// is the URI of its stem key and whose value maps sliders to numbers. Blocks; any thread.
namespace kelvara::EditFile {

/// By stem key.
using Edits = std::unordered_map<FileURL, LightAdjustments>;

/// What it holds, without photos that have no edits; nothing where it is missing or damaged. What in it makes
/// no sense is passed over.
[[nodiscard]] Result<Edits, FileError> read(const FileSystem& files, const FileURL& url);

/// What to change, given what the file holds now, or null where it is missing or damaged. Empty edits take a
/// photo out.
using Change = std::function<Edits(const Edits* found)>;

/// Changes some photos' edits and leaves everything else there as it stands, even what this program can't
/// read. Nobody who does the same, in any process, comes in between. Gives what the file holds then. A
/// damaged file is put aside under another name; one that can't be read is left alone, and that fails.
[[nodiscard]] Result<Edits, FileError> update(FileSystem& files, const FileURL& url, const Change& change);

} // namespace kelvara::EditFile
