#include "cli/MediaFolder.h"

#include "services/FileScanner.h"

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

bool hasRaw(const FileURL& file) {
    if (mediaKind(file.extension()) == MediaKind::raw) return true;
    std::error_code code;
    const auto parent = file.parent();
    // No walk: it would go through all that lies below the folder.
    for (std::filesystem::directory_iterator entry{parent.path(), code}, end; !code && entry != end;
         entry.increment(code)) {
        const auto beside = parent.child(entry->path().filename().native());
        const bool isSameShot = beside.stemKey() == file.stemKey();
        std::error_code unknown;
        if (isSameShot && mediaKind(beside.extension()) == MediaKind::raw &&
            entry->symlink_status(unknown).type() == std::filesystem::file_type::regular) {
            return true;
        }
    }
    return false;
}

std::string shownPath(const FileURL& file, const FileURL& folder) {
    const auto prefix = folder.path() == "/" ? 1 : folder.path().size() + 1;
    return printable(std::string_view{file.path()}.substr(prefix));
}

} // namespace kelvara::cli
