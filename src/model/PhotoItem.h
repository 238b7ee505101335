#pragma once

#include "model/FileURL.h"
#include "model/MediaKind.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace kelvara {

/// A moment in universal time, as file systems give it. Microseconds, so that no date a file system can hold
/// overflows.
using FileTime = std::chrono::sys_time<std::chrono::microseconds>;

/// One media file of the current source. Its `url` is its identity and the key of every collection of items.
struct PhotoItem {
    FileURL url;
    std::int64_t fileSize = 0; ///< Bytes; 0 when unknown.
    std::optional<FileTime>
        creationDate; ///< Stands for the capture date; no embedded metadata is read for it.

    [[nodiscard]] std::optional<MediaKind> kind() const { return mediaKind(url.extension()); }

    friend bool operator==(const PhotoItem&, const PhotoItem&) = default;
};

} // namespace kelvara

template <> struct std::hash<kelvara::PhotoItem> {
    std::size_t operator()(const kelvara::PhotoItem& item) const noexcept;
};
