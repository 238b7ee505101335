#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace kelvara {

/// What kind of media file a file name's extension stands for; nothing in a file is read to tell.
enum class MediaKind { raw, jpeg, heif, video };

/// The extensions of each kind, in lower case.
inline constexpr std::array<std::string_view, 19> rawExtensions{
    "nef", "nrw", "cr2", "cr3", "crw", "arw", "srf", "sr2", "raf", "orf",
    "rw2", "pef", "srw", "3fr", "fff", "iiq", "rwl", "x3f", "dng"};
inline constexpr std::array<std::string_view, 2> jpegExtensions{"jpg", "jpeg"};
inline constexpr std::array<std::string_view, 3> heifExtensions{"heic", "heif", "hif"};
inline constexpr std::array<std::string_view, 6> videoExtensions{"mp4", "mov", "m4v", "avi", "mts", "m2ts"};

/// `extension` is without its dot, in any case. Empty for everything that is no media file.
[[nodiscard]] std::optional<MediaKind> mediaKind(std::string_view extension);

/// Whether files of this kind are pictures that stand still.
[[nodiscard]] constexpr bool isStillImage(MediaKind kind) { return kind != MediaKind::video; }

} // namespace kelvara
