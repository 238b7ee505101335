#pragma once

#include "model/PhotoItem.h"
#include "platform/FileSystem.h"
#include "services/CopyService.h"

#include <string>
#include <unordered_set>

namespace kelvara {

/// Longest file name, in bytes, that common file systems take.
inline constexpr std::size_t maximumNameLength = 255;

/// The day of a photo in the user's time zone, "2024-03-07", or "Undated".
[[nodiscard]] std::string dateFolderName(std::optional<FileTime> date);

/// "IMG_1.CR3" for 0, then "IMG_1-1.CR3" and so on. A name that would be too long loses the end of its stem.
[[nodiscard]] std::string numberedName(const FileURL& source, unsigned number);

/// Where a file is written before it takes its name: "IMG_1.CR3.partial" beside it. Where that name is too
/// long, a shorter one that no other file of the folder gets.
[[nodiscard]] FileURL temporaryURL(const FileURL& destination);

/// Finds a destination for one file after the other, none twice, even where the file system ignores case.
class DestinationNames {
public:
    struct Found {
        FileURL url;
        CopyService::Plan::Action action;
    };

    /// With `verifies`, files count as the same only where their contents are. Once `stop` is requested, what
    /// is found means nothing.
    DestinationNames(const FileSystem& files, bool verifies, const std::stop_token& stop)
        : m_files{files}, m_verifies{verifies}, m_stop{stop} {}

    /// The first numbered name in `folder` that is free, or that a file of the same size bears, which is
    /// taken for an earlier copy of the item.
    [[nodiscard]] Found resolve(const PhotoItem& item, const FileURL& folder);
    /// The first numbered name in `folder` that no file bears, for one made of the photo.
    [[nodiscard]] FileURL unused(const FileURL& photo, std::string_view extension, const FileURL& folder);

private:
    [[nodiscard]] bool isEarlierCopy(const FileURL& candidate, const FileStatus& status,
                                     const PhotoItem& item) const;

    const FileSystem& m_files;
    bool m_verifies;
    const std::stop_token& m_stop;
    std::unordered_set<std::string> m_reserved; // paths without case
};

} // namespace kelvara
