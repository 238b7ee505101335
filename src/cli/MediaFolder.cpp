#include "cli/MediaFolder.h"

#include "services/FileScanner.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fmt/format.h>
#include <unistd.h>

namespace kelvara::cli {

namespace {

Failure<CommandError> failure(std::string_view path, const std::error_code& code) {
    return Failure{CommandError{fmt::format("{}: {}", printable(path), code.message())}};
}

/// Looks no further than whether there is something to look at.
class Probe : public FolderWalkVisitor {
public:
    Answer met(std::string_view) override { return Answer::stop; }
    void described(std::string_view, std::string_view, const FileStatus&) override {}
};

} // namespace

Result<FileURL, CommandError> resolved(const std::string& path) {
    std::error_code code;
    const auto canonical = std::filesystem::weakly_canonical(std::filesystem::absolute(path, code), code);
    if (path.empty()) code = std::make_error_code(std::errc::no_such_file_or_directory);
    if (code) return failure(path, code);
    return FileURL::standardized(canonical.native());
}

Result<FileURL, CommandError> resolvedLink(const std::string& path) {
    std::error_code code;
    const auto absolute = std::filesystem::absolute(path, code).lexically_normal();
    if (code || path.empty() || !absolute.has_filename()) return resolved(path);
    const auto folder = resolved(absolute.parent_path().native());
    if (!folder) return folder;
    return folder->child(absolute.filename().native());
}

FileURL asGiven(const std::string& path) {
    std::error_code code;
    return FileURL::standardized(path, std::filesystem::current_path(code).native());
}

Result<FileURL, CommandError> readableFile(const std::string& path) {
    auto file = resolved(path);
    if (!file) return file;
    std::error_code code;
    if (::access(file->path().c_str(), R_OK) != 0) code = {errno, std::generic_category()};
    if (code) return failure(file->path(), code);
    if (!std::filesystem::is_regular_file(file->path(), code)) {
        return Failure{CommandError{fmt::format("“{}” isn't a photo or video.", printable(file->name()))}};
    }
    return file;
}

Result<std::vector<PhotoItem>, CommandError> mediaFiles(const FileSystem& files, const FileURL& folder,
                                                        const std::stop_token& stop) {
    Probe probe;
    if (const auto readable = files.walk(folder, probe); !readable) {
        return failure(folder.path(), readable.error().code);
    }
    auto collected = FileScanner{files}.collect(folder, stop);
    if (!collected) return Failure{CommandError{"Cancelled", ExitCode::interrupted}};
    return std::move(*collected);
}

Result<std::vector<PhotoItem>, CommandError> mediaFilesIn(const FileURL& folder) {
    std::error_code code;
    std::vector<PhotoItem> items;
    // No walk: it would go through all that lies below the folder.
    for (std::filesystem::directory_iterator entry{folder.path(), code}, end; !code && entry != end;
         entry.increment(code)) {
        PhotoItem item{folder.child(entry->path().filename().native()), 0, std::nullopt};
        std::error_code unknown;
        const auto type = entry->symlink_status(unknown).type();
        if (item.kind() && type == std::filesystem::file_type::regular) items.push_back(std::move(item));
    }
    if (code) return failure(folder.path(), code);
    return items;
}

bool hasRaw(const FileURL& file) {
    if (mediaKind(file.extension()) == MediaKind::raw) return true;
    const auto items = mediaFilesIn(file.parent());
    return items && std::any_of(items->begin(), items->end(), [&](const PhotoItem& item) {
               return item.kind() == MediaKind::raw && item.url.stemKey() == file.stemKey();
           });
}

std::string shownPath(const FileURL& file, const FileURL& folder) {
    const auto prefix = folder.path() == "/" ? 1 : folder.path().size() + 1;
    return printable(std::string_view{file.path()}.substr(prefix));
}

} // namespace kelvara::cli
