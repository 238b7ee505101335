#pragma once

#include "platform/FileSystem.h"

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace kelvara {

/// A file system in memory that does what a test tells it to: fails at the n-th change, refuses a path, runs
/// full. Paths are absolute, without a trailing slash. May be used from several
/// threads.
class FakeFileSystem : public FileSystem {
public:
    enum class Operation { status, walk, read, write, createFolders, move, remove };

    // Setting up.

    void addFolder(const std::string& path) {
        const std::scoped_lock lock{m_mutex};
        insertFolder(FileURL{path});
    }
    /// With the folders above it; replaces an earlier file.
    void addFile(const std::string& path, std::string bytes = {}, std::optional<FileTime> date = {}) {
        const std::scoped_lock lock{m_mutex};
        insertFolder(FileURL{path}.parent());
        m_files[path] = {std::move(bytes), date};
    }
    /// From now on every such operation on `path` fails; for moves both paths count.
    void refuse(Operation operation, const std::string& path, std::errc code = std::errc::permission_denied) {
        const std::scoped_lock lock{m_mutex};
        m_refusals[{operation, path}] = code;
    }
    /// The n-th change from now on (1 is the next) fails. Changes are all operations from `write` on.
    void failChange(int n, std::errc code = std::errc::io_error) {
        const std::scoped_lock lock{m_mutex};
        m_changesUntilFailure = n;
        m_changeFailure = code;
    }
    /// Bytes that may still be written, anywhere; none for an unknown, unlimited number.
    void setCapacity(std::optional<std::int64_t> bytes) {
        const std::scoped_lock lock{m_mutex};
        m_capacity = bytes;
    }
    /// Called before every operation without the lock, so that it may cancel, change files, or wait. Set it
    /// before other threads use the file system.
    std::function<void(Operation, const FileURL&)> onOperation;

    // Looking at the outcome.

    [[nodiscard]] std::optional<std::string> bytes(const std::string& path) const {
        const std::scoped_lock lock{m_mutex};
        const auto file = m_files.find(path);
        return file == m_files.end() ? std::nullopt : std::optional{file->second.bytes};
    }
    [[nodiscard]] bool hasFolder(const std::string& path) const {
        const std::scoped_lock lock{m_mutex};
        return m_folders.contains(path);
    }
    /// All files, sorted.
    [[nodiscard]] std::vector<std::string> paths() const {
        const std::scoped_lock lock{m_mutex};
        std::vector<std::string> result;
        for (const auto& [path, file] : m_files) result.push_back(path);
        return result;
    }
    /// How often it was asked, failures included.
    [[nodiscard]] int count(Operation operation) const {
        const std::scoped_lock lock{m_mutex};
        const auto found = m_counts.find(operation);
        return found == m_counts.end() ? 0 : found->second;
    }

    // The file system.

    [[nodiscard]] Result<FileStatus, FileError> status(const FileURL& url) const override {
        return perform(Operation::status, url, [&]() -> Result<FileStatus, FileError> {
            if (m_folders.contains(url.path())) return FileStatus{FileStatus::Kind::folder, 0, {}};
            const auto file = m_files.find(url.path());
            if (file == m_files.end()) return failure(url, std::errc::no_such_file_or_directory);
            return statusOf(file->second);
        });
    }

    /// Sees entries sorted by path; packages are the folders named "*.app" and "*.photoslibrary".
    Result<void, FileError> walk(const FileURL& folder, FolderWalkVisitor& visitor) const override {
        std::vector<std::pair<std::string, FileStatus>> entries;
        const auto listed = perform(Operation::walk, folder, [&]() -> Result<void, FileError> {
            if (!m_folders.contains(folder.path())) return failure(folder, missingOrNotAFolder(folder));
            entries = entriesBelow(folder);
            return {};
        });
        if (!listed) return listed;
        for (const auto& [path, entryStatus] : entries) {
            const FileURL url{path};
            const auto answer = visitor.met(url.name());
            if (answer == FolderWalkVisitor::Answer::stop) break;
            if (answer != FolderWalkVisitor::Answer::describe) continue;
            const auto parent = url.parent().path();
            visitor.described(parent == "/" ? "" : parent, url.name(), entryStatus);
        }
        return {};
    }

    [[nodiscard]] Result<std::string, FileError> readFile(const FileURL& url,
                                                          std::int64_t maximumBytes) const override {
        return perform(Operation::read, url, [&]() -> Result<std::string, FileError> {
            if (m_folders.contains(url.path())) return failure(url, std::errc::is_a_directory);
            const auto file = m_files.find(url.path());
            if (file == m_files.end()) return failure(url, std::errc::no_such_file_or_directory);
            if (statusOf(file->second).size > maximumBytes) return failure(url, std::errc::file_too_large);
            return file->second.bytes;
        });
    }

    Result<void, FileError> writeFileAtomically(const FileURL& url, std::string_view bytes) override {
        return perform(Operation::write, url, [&]() -> Result<void, FileError> {
            if (m_folders.contains(url.path())) return failure(url, std::errc::is_a_directory);
            if (!m_folders.contains(url.parent().path()))
                return failure(url, missingOrNotAFolder(url.parent()));
            if (!takeCapacity(bytes.size())) return failure(url, std::errc::no_space_on_device);
            m_files[url.path()].bytes = bytes;
            return {};
        });
    }

    /// Whoever asks gets it.
    [[nodiscard]] Result<std::unique_ptr<FileLock>, FileError> lock(const FileURL&) override {
        return std::make_unique<FileLock>();
    }

    Result<void, FileError> createFolders(const FileURL& folder) override {
        return perform(Operation::createFolders, folder, [&]() -> Result<void, FileError> {
            for (auto above = folder; above.path() != "/"; above = above.parent()) {
                if (m_files.contains(above.path())) return failure(folder, std::errc::not_a_directory);
            }
            insertFolder(folder);
            return {};
        });
    }

    Result<void, FileError> createPrivateFolder(const FileURL& folder) override {
        return createFolders(folder);
    }
    [[nodiscard]] Result<std::vector<FileURL>, FileError> entries(const FileURL& folder) const override {
        return perform(Operation::walk, folder, [&]() -> Result<std::vector<FileURL>, FileError> {
            if (!m_folders.contains(folder.path())) return failure(folder, missingOrNotAFolder(folder));
            std::vector<FileURL> found;
            for (const auto& [path, status] : entriesBelow(folder)) {
                if (FileURL{path}.parent() == folder) found.emplace_back(path);
            }
            return found;
        });
    }

    /// Copying and creating take real files.
    Result<std::unique_ptr<PendingCopy>, FileError> copyFile(const FileURL&, const FileURL& temporary,
                                                             CopyReading, std::stop_token) override {
        return failure(temporary, std::errc::not_supported);
    }
    Result<std::unique_ptr<PendingCopy>, FileError> createFile(const FileURL& temporary,
                                                               std::string_view) override {
        return failure(temporary, std::errc::not_supported);
    }
    [[nodiscard]] Result<bool, FileError> haveSameContents(const FileURL& file, const FileURL& onMedium,
                                                           std::stop_token) const override {
        const auto first = bytes(file.path());
        if (!first) return failure(file, std::errc::no_such_file_or_directory);
        return first == bytes(onMedium.path());
    }
    Result<void, FileError> syncNames(const FileURL&) override { return {}; }

    Result<void, FileError> moveFile(const FileURL& from, const FileURL& to) override {
        return perform(Operation::move, from, to, [&]() -> Result<void, FileError> {
            const auto source = m_files.find(from.path());
            if (source == m_files.end()) return failure(from, std::errc::no_such_file_or_directory);
            if (const auto error = refusalOfTarget(to)) return failure(to, *error);
            auto file = std::move(source->second);
            m_files.erase(source);
            m_files[to.path()] = std::move(file);
            return {};
        });
    }

    Result<void, FileError> removeFile(const FileURL& url) override {
        return perform(Operation::remove, url, [&]() -> Result<void, FileError> {
            if (m_folders.contains(url.path())) return failure(url, std::errc::is_a_directory);
            const auto file = m_files.find(url.path());
            if (file == m_files.end()) return failure(url, std::errc::no_such_file_or_directory);
            if (m_capacity) *m_capacity += statusOf(file->second).size;
            m_files.erase(file);
            return {};
        });
    }

    Result<void, FileError> removeAll(const FileURL& url) override {
        return perform(Operation::remove, url, [&]() -> Result<void, FileError> {
            const auto isGone = [&](const std::string& path) { return FileURL{path}.isContained(url); };
            std::erase_if(m_files, [&](const auto& file) { return isGone(file.first); });
            std::erase_if(m_folders, isGone);
            return {};
        });
    }

    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const FileURL&) const override {
        const std::scoped_lock lock{m_mutex};
        return m_capacity;
    }

private:
    struct File {
        std::string bytes;
        std::optional<FileTime> date;
    };

    static Failure<FileError> failure(const FileURL& url, std::errc code) {
        return Failure{FileError{url, std::make_error_code(code)}};
    }
    static FileStatus statusOf(const File& file) {
        return {FileStatus::Kind::file, static_cast<std::int64_t>(file.bytes.size()), file.date};
    }

    template <typename Action>
    std::invoke_result_t<Action> perform(Operation operation, const FileURL& url, Action action) const {
        return perform(operation, url, url, action);
    }

    /// Counts the operation, lets it fail where a test wants that, or runs it under the lock.
    template <typename Action> auto perform(Operation operation, const FileURL& url, const FileURL& other,
                                            Action action) const -> decltype(action()) {
        if (onOperation) onOperation(operation, url);
        const std::scoped_lock lock{m_mutex};
        ++m_counts[operation];
        for (const auto* path : {&url, &other}) {
            const auto refusal = m_refusals.find({operation, path->path()});
            if (refusal != m_refusals.end()) return failure(*path, refusal->second);
        }
        if (operation >= Operation::write && m_changesUntilFailure > 0 && --m_changesUntilFailure == 0) {
            return failure(url, m_changeFailure);
        }
        return action();
    }

    void insertFolder(FileURL folder) {
        while (m_folders.insert(folder.path()).second) folder = folder.parent();
    }
    [[nodiscard]] std::errc missingOrNotAFolder(const FileURL& url) const {
        return m_files.contains(url.path()) ? std::errc::not_a_directory
                                            : std::errc::no_such_file_or_directory;
    }
    [[nodiscard]] std::optional<std::errc> refusalOfTarget(const FileURL& to) const {
        if (m_files.contains(to.path()) || m_folders.contains(to.path())) return std::errc::file_exists;
        if (!m_folders.contains(to.parent().path())) return missingOrNotAFolder(to.parent());
        return std::nullopt;
    }
    bool takeCapacity(std::size_t size) {
        const auto bytes = static_cast<std::int64_t>(size);
        if (m_capacity && *m_capacity < bytes) return false;
        if (m_capacity) *m_capacity -= bytes;
        return true;
    }

    [[nodiscard]] std::vector<std::pair<std::string, FileStatus>> entriesBelow(const FileURL& folder) const {
        std::map<std::string, FileStatus> entries;
        const auto add = [&](const std::string& path, const FileStatus& entry) {
            const FileURL url{path};
            if (path != folder.path() && url.isContained(folder) && isShown(url, folder))
                entries[path] = entry;
        };
        for (const auto& path : m_folders) add(path, {FileStatus::Kind::folder, 0, {}});
        for (const auto& [path, file] : m_files) add(path, statusOf(file));
        return {entries.begin(), entries.end()};
    }
    static bool isShown(const FileURL& url, const FileURL& top) {
        if (url.name().starts_with('.')) return false;
        for (auto above = url.parent(); above != top && above.path() != "/"; above = above.parent()) {
            const auto extension = above.extension();
            if (above.name().starts_with('.') || extension == "app" || extension == "photoslibrary")
                return false;
        }
        return true;
    }

    mutable std::mutex m_mutex;
    std::map<std::string, File> m_files;
    std::set<std::string> m_folders{"/"};
    std::map<std::pair<Operation, std::string>, std::errc> m_refusals;
    std::optional<std::int64_t> m_capacity;
    std::errc m_changeFailure = std::errc::io_error;
    mutable int m_changesUntilFailure = 0; // 0: none will fail
    mutable std::map<Operation, int> m_counts;
};

} // namespace kelvara
