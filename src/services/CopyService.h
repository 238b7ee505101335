#pragma once

#include "model/ExportSettings.h"
#include "model/PhotoItem.h"
#include "model/Rating.h"
#include "model/Result.h"
#include "platform/FileSystem.h"
#include "presets/ExportLook.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace kelvara {

/// Copies photos into a folder, or exports them as pictures, in two steps: `plan` decides where each file
/// goes and may refuse the whole job, `copy` carries the plans out. Nothing at the destination is ever
/// overwritten, and a file that bears its final name there is complete.
///
/// Holds no state; both steps block, so they are called off the main thread.
class CopyService {
public:
    /// Asks for new image files instead of copies.
    struct Export {
        std::optional<ExportLook> look; ///< Ignored unless the settings apply looks.
        ExportSettings settings;

        /// "JPEG with “Warm 65%” + Edits applied", or "JPEG".
        [[nodiscard]] std::string title() const;
    };

    struct PlanRequest {
        std::vector<PhotoItem> items;
        FileURL destination;
        std::optional<FileURL>
            source; ///< The folder or card that the items come from; may not be copied into.
        bool intoDateFolders = false; ///< A folder a day, "2024-03-07", below the destination.
        bool createsFolders = true;   ///< Off for a plan that is only looked at.
        bool verifies = false; ///< Read each copy back and compare it with what was read of the source;
                               ///< compare files that are there already with the items too.
        std::optional<Export> exportAs{}; ///< One file a shot; never verified, never skipped.
    };

    /// One planned file.
    struct Plan {
        struct Copy {
            bool isVerified = false; ///< Read back and compared before it takes its name.
            friend bool operator==(const Copy&, const Copy&) = default;
        };
        /// A file of this name and size is there already; with verification, of these contents too.
        struct SkipExisting {
            friend bool operator==(const SkipExisting&, const SkipExisting&) = default;
        };
        /// A new image file is made of the source; the plan's `size` stays the source's.
        struct Render {
            std::shared_ptr<const DevelopPreset> preset; ///< With the photo's edits; null for as it is.
            ExportSettings settings;
            friend bool operator==(const Render&, const Render&) = default;
        };
        using Action = std::variant<Copy, SkipExisting, Render>;

        FileURL source;
        FileURL destination; ///< The final place, no other plan's.
        std::int64_t size = 0;
        Action action;
        bool isRaw = false;
        std::optional<FileURL> sourceSidecar; ///< The source's rating sidecar, where there is one.

        friend bool operator==(const Plan&, const Plan&) = default;
    };

    struct NotEnoughSpace {
        std::int64_t needed = 0; ///< Bytes.
        std::int64_t available = 0;
        friend bool operator==(const NotEnoughSpace&, const NotEnoughSpace&) = default;
    };
    struct DestinationInsideSource {
        friend bool operator==(const DestinationInsideSource&, const DestinationInsideSource&) = default;
    };
    struct SizeMismatch {
        friend bool operator==(const SizeMismatch&, const SizeMismatch&) = default;
    };
    struct ContentsMismatch {
        friend bool operator==(const ContentsMismatch&, const ContentsMismatch&) = default;
    };
    struct Cancelled {
        friend bool operator==(const Cancelled&, const Cancelled&) = default;
    };
    using CopyError = std::variant<NotEnoughSpace, DestinationInsideSource, SizeMismatch, ContentsMismatch,
                                   Cancelled, FileError>;

    struct Progress {
        std::int64_t completedFiles = 0; ///< Whatever became of them.
        std::int64_t totalFiles = 0;
        std::int64_t completedBytes = 0; ///< Sizes of the completed files.
        std::int64_t totalBytes = 0;
        std::string currentFile; ///< Name of the source that finished last; empty at the start.

        friend bool operator==(const Progress&, const Progress&) = default;
    };
    using ProgressHandler = std::function<void(const Progress&)>;

    struct Report {
        struct Failure {
            std::string fileName;
            std::string reason;
            FileURL source{}; ///< Which of the files of that name.
            friend bool operator==(const Failure&, const Failure&) = default;
        };

        FileURL destination;
        std::int64_t copied = 0; ///< Or exported.
        std::int64_t skipped = 0;
        std::int64_t renamed = 0;        ///< Copied under another name than the source's.
        std::vector<Failure> failures;   ///< In the order in which the files finished.
        std::vector<FileURL> exported{}; ///< What was exported, in the order of the plans.
        std::int64_t copiedBytes = 0;
        std::chrono::nanoseconds duration{};
        bool wasCancelled = false; ///< Some plans were never begun.

        friend bool operator==(const Report&, const Report&) = default;
    };

    /// Stars of photos whose sidecar could not be written beside them, by the photo's URL.
    using Ratings = std::unordered_map<FileURL, Rating>;
    /// Writes a new sidecar that holds a rating; called on several threads at once. Gives the reason of a
    /// failure as a sentence.
    using SidecarWriter = std::function<Result<void, std::string>(const FileURL& sidecar, Rating rating)>;

    /// Files that are copied at once.
    static constexpr std::size_t maximumInFlight = 3;
    /// Photos that are exported at once: each takes the memory of a few pictures.
    static constexpr std::size_t maximumRendersInFlight = 2;

    /// `files` outlives it.
    CopyService(FileSystem& files, SidecarWriter writeSidecar)
        : m_files{files}, m_writeSidecar{std::move(writeSidecar)} {}

    /// Chooses every file's destination, in the order of the items. Creates the folders unless told not to,
    /// and they stay even when it fails; touches no photo.
    [[nodiscard]] Result<std::vector<Plan>, CopyError> plan(const PlanRequest& request,
                                                            const std::stop_token& stop = {}) const;

    /// Carries the plans out, a few at a time; files that are reported as copied outlast a power cut. Never
    /// fails as a whole: a file's problem becomes an entry of the report. Once `stop` is requested no file is
    /// begun, and those in progress are finished. `onProgress` is called on the calling thread: once before
    /// the first file, then after each file.
    Report copy(const std::vector<Plan>& plans, const FileURL& destination, const Ratings& ratings,
                const std::stop_token& stop, const ProgressHandler& onProgress) const;

private:
    struct Copied {
        std::int64_t bytes = 0;
    };
    struct Failed {
        std::string reason;
    };
    struct Skipped {};
    using Outcome = std::variant<Copied, Failed, Skipped>;
    struct Finished {
        const Plan& plan;
        Outcome outcome;
    };
    class Batch;
    class Run;

    /// Makes the picture that is to be exported.
    [[nodiscard]] Outcome render(const Plan& plan, std::optional<Rating> rating) const;
    static void add(const Finished& finished, Report& report);
    /// Adds sizes, none of which can be trusted to make sense.
    static std::int64_t saturatingSum(std::int64_t a, std::int64_t b);

    FileSystem& m_files;
    SidecarWriter m_writeSidecar;
};

/// What the user reads of a job that could not start.
[[nodiscard]] std::string message(const CopyService::CopyError& error);
/// What the user reads beside the name of a file that could not be copied.
[[nodiscard]] std::string failureReason(const CopyService::CopyError& error, const CopyService::Plan& plan);

} // namespace kelvara
