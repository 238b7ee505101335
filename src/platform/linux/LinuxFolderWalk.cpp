#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileTimes.h"
#include "platform/linux/LinuxFileSystem.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/syscall.h>
#include <vector>

namespace kelvara {

namespace {

/// Folders that desktops show as one file, by the extension of their name, in lower case.
constexpr std::array<std::string_view, 17> packageExtensions{"app",
                                                             "aplibrary",
                                                             "bundle",
                                                             "cocatalog",
                                                             "framework",
                                                             "fcpbundle",
                                                             "imovielibrary",
                                                             "lrcat-data",
                                                             "lrdata",
                                                             "lrlibrary",
                                                             "migratedphotolibrary",
                                                             "photolibrary",
                                                             "photoslibrary",
                                                             "plugin",
                                                             "tvlibrary",
                                                             "theater",
                                                             "kext"};

bool isPackage(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return false;
    const auto extension = name.substr(dot + 1);
    const auto equalsIgnoringCase = [extension](std::string_view package) {
        return package.size() == extension.size() &&
               std::equal(package.begin(), package.end(), extension.begin(), [](char a, char b) {
                   return a == (b >= 'A' && b <= 'Z' ? static_cast<char>(b - 'A' + 'a') : b);
               });
    };
    return std::any_of(packageExtensions.begin(), packageExtensions.end(), equalsIgnoringCase);
}

/// What getdents64 puts into its buffer; glibc offers no declaration of it.
struct DirectoryEntry {
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short length;
    unsigned char type;
    char name[1];
};

class Walk {
public:
    explicit Walk(FolderWalkVisitor& visitor) : m_visitor{visitor}, m_buffer{new char[bufferSize]} {}

    /// Reads one open folder after the other, so that however deep a tree is, one folder is open at a time.
    void run(FileDescriptor top, std::string path) {
        if (!readFolder(top, path)) return;
        while (!m_pending.empty()) {
            const auto folder = std::move(m_pending.back());
            m_pending.pop_back();
            const FileDescriptor opened{
                ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)};
            if (opened.isOpen() && !readFolder(opened, folder)) return;
        }
    }

private:
    static constexpr std::size_t bufferSize = 64 * 1024;

    /// False when the visitor wants no more.
    bool readFolder(const FileDescriptor& folder, const std::string& path) {
        const auto firstChild = m_pending.size();
        for (;;) {
            const auto bytes = ::syscall(SYS_getdents64, folder.get(), m_buffer.get(), bufferSize);
            if (bytes <= 0) break; // the end, or what is left can't be read: both end this folder only
            for (long at = 0; at < bytes;) {
                const auto* entry = reinterpret_cast<const DirectoryEntry*>(m_buffer.get() + at);
                at += entry->length;
                if (entry->name[0] == '.') continue;
                if (!meet(folder, path, *entry)) return false;
            }
        }
        // The last in the list is read next; this keeps the folders in the order of the directory.
        std::reverse(m_pending.begin() + static_cast<std::ptrdiff_t>(firstChild), m_pending.end());
        return true;
    }

    bool meet(const FileDescriptor& folder, const std::string& path, const DirectoryEntry& entry) {
        const char* name = &entry.name[0];
        const std::string_view nameText{name};
        const auto answer = m_visitor.met(nameText);
        if (answer == FolderWalkVisitor::Answer::stop) return false;

        bool isFolder = entry.type == DT_DIR;
        if (answer == FolderWalkVisitor::Answer::describe || entry.type == DT_UNKNOWN) {
            struct statx values {};
            if (::statx(folder.get(), name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, statusFields, &values) !=
                0) {
                return true;
            }
            isFolder = S_ISDIR(values.stx_mode);
            if (answer == FolderWalkVisitor::Answer::describe) {
                m_visitor.described(path, nameText, fileStatus(values));
            }
        }
        if (isFolder && !isPackage(nameText)) {
            auto& child = m_pending.emplace_back();
            child.reserve(path.size() + 1 + nameText.size());
            child = path;
            child += '/';
            child += nameText;
        }
        return true;
    }

    FolderWalkVisitor& m_visitor;
    std::unique_ptr<char[]> m_buffer;
    std::vector<std::string> m_pending;
};

} // namespace

Result<void, FileError> LinuxFileSystem::walk(const FileURL& folder, FolderWalkVisitor& visitor) const {
    FileDescriptor top{::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (!top.isOpen()) return Failure{FileError{folder, {errno, std::generic_category()}}};
    Walk{visitor}.run(std::move(top), folder.path() == "/" ? std::string{} : folder.path());
    return {};
}

} // namespace kelvara
