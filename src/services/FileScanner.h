#pragma once

#include "model/PhotoItem.h"
#include "model/Result.h"
#include "platform/FileSystem.h"

#include <stop_token>
#include <string>
#include <vector>

namespace kelvara {

/// Lists the media files below a folder. Holds no state and blocks, so it runs in the background.
class FileScanner {
public:
    struct Cancelled {};

    /// `locale` decides the order of names; see `NameOrder`.
    explicit FileScanner(const FileSystem& files, std::string locale = {})
        : m_files{files}, m_locale{std::move(locale)} {}

    /// Every media file below `folder`, at any depth, by creation date where two files have different ones
    /// and by name in all other cases. A folder that is missing or can't be read gives an empty list; what
    /// can't be read inside is left out. A stop takes effect within 256 entries.
    [[nodiscard]] Result<std::vector<PhotoItem>, Cancelled> collect(const FileURL& folder,
                                                                    const std::stop_token& stop) const;

private:
    const FileSystem& m_files;
    std::string m_locale;
};

} // namespace kelvara
