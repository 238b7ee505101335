#pragma once

#include "cli/Console.h"
#include "model/PhotoItem.h"
#include "model/Result.h"
#include "platform/FileSystem.h"

#include <stop_token>
#include <string>
#include <vector>

namespace kelvara::cli {

/// The file or folder that a path on the command line means, links and ".." resolved as far as it exists.
[[nodiscard]] Result<FileURL, CommandError> resolved(const std::string& path);

/// The same, but a link at the end of the path is what is meant, not what it leads to.
[[nodiscard]] Result<FileURL, CommandError> resolvedLink(const std::string& path);

/// The absolute path that a path on the command line spells, no link in it followed: the window knows its
/// photos by it.
[[nodiscard]] FileURL asGiven(const std::string& path);

/// What `resolved` gives for a photo or video that exists and may be read.
[[nodiscard]] Result<FileURL, CommandError> readableFile(const std::string& path);

/// The media files below a folder, in the scanner's order. Unlike the scanner alone, it fails for a folder
/// that is missing or can't be read.
[[nodiscard]] Result<std::vector<PhotoItem>, CommandError>
mediaFiles(const FileSystem& files, const FileURL& folder, const std::stop_token& stop);

/// The media files of that folder alone, in no order; fails where it can't be read.
[[nodiscard]] Result<std::vector<PhotoItem>, CommandError> mediaFilesIn(const FileURL& folder);

/// Whether the shot that `file` belongs to has a RAW file: it is one, or one of the same name lies beside it.
[[nodiscard]] bool hasRaw(const FileURL& file);

/// The path of a file below `folder` for people to read, without the folder's.
[[nodiscard]] std::string shownPath(const FileURL& file, const FileURL& folder);

} // namespace kelvara::cli
