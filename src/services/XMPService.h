#pragma once

#include "model/FileURL.h"
#include "model/Rating.h"
#include "model/Result.h"
#include "platform/FileSystem.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

namespace kelvara {

/// The sidecar exists, but is nothing that a rating could be written into without harm.
struct UnreadableSidecar {
    FileURL url;
    friend bool operator==(const UnreadableSidecar&, const UnreadableSidecar&) = default;
};

/// Why a rating could not be saved.
using XMPError = std::variant<UnreadableSidecar, FileError>;

/// One sentence for people.
[[nodiscard]] std::string message(const XMPError& error);

/// Reads and writes the star ratings in XMP sidecars, the files beside RAW photos in which catalogue programs
/// look for them.
///
/// An existing sidecar keeps every byte outside the rating and the date of the change. Any thread; calls
/// touch one sidecar at a time, so that a reader sees a sidecar before or after a write. All of them block on
/// files.
class XMPService {
public:
    using Clock = std::function<std::chrono::system_clock::time_point()>;

    /// `files` must outlive the service. `now` gives the date of a change.
    explicit XMPService(FileSystem& files, Clock now = std::chrono::system_clock::now);

    /// The ratings of those sidecars that exist, can be read and have one. After `stop`, of those read until
    /// then.
    [[nodiscard]] std::unordered_map<FileURL, Rating> readRatings(std::span<const FileURL> sidecars,
                                                                  std::stop_token stop = {}) const;

    /// The rating in a sidecar's bytes; none where they are no XMP or say anything but 0 to 5.
    [[nodiscard]] static std::optional<Rating> rating(std::string_view bytes);

    /// Writes the rating and the date of the change into the sidecar, or into a new one where none exists. On
    /// failure the sidecar is as it was.
    Result<void, XMPError> setRating(Rating rating, const FileURL& sidecar);

private:
    FileSystem& m_files;
    Clock m_now;
    mutable std::mutex m_oneCallAtATime;
};

} // namespace kelvara
