#pragma once

#include "platform/FileSystem.h"
#include "platform/linux/FileDescriptor.h"

#include <cerrno>
#include <string>
#include <string_view>

namespace kelvara {

[[nodiscard]] inline FileError fileError(const FileURL& url, int code = errno) {
    return {url, {code, std::generic_category()}};
}

/// Repeats a system call that a signal interrupted.
template <typename Call> auto uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) return result;
    }
}

// Each of these leaves its reason in errno when it gives false.

/// Writes all of `bytes` at the file's position.
[[nodiscard]] bool writeAll(const FileDescriptor& file, std::string_view bytes);

/// Waits until the file's bytes and attributes are on the medium.
[[nodiscard]] bool syncFile(const FileDescriptor& file);

/// Waits until the names in a folder are on the medium, as far as its file system knows how.
[[nodiscard]] bool syncFolder(const FileURL& folder);

/// Gives `to` the user's extended attributes of `from`. File systems without attributes, and attributes that
/// `to` can't hold, are passed over.
void copyUserAttributes(const FileDescriptor& from, const FileDescriptor& to);

/// Ways to give a file a name that is free, from the best to the last resort. Each fails with EEXIST when
/// the name is taken; the next is for file systems that refuse the one before.
[[nodiscard]] bool moveByExclusiveRename(const FileURL& from, const FileURL& to);
[[nodiscard]] bool moveByLink(const FileURL& from, const FileURL& to);
/// Leaves a moment between the check and the rename in which another program could take the name.
[[nodiscard]] bool moveByCheckedRename(const FileURL& from, const FileURL& to);
/// The first of them that the file system knows.
[[nodiscard]] bool moveWithoutReplacing(const FileURL& from, const FileURL& to);

} // namespace kelvara
