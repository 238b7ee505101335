#pragma once

#include "model/PhotoItem.h"
#include "model/Result.h"
#include "platform/FileSystem.h"
#include "presets/ExportLook.h"
#include "services/PhotoExport.h"

#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace kelvara {

/// Makes small JPEGs of photos for sharing, in a folder of its own that it tidies up. Holds no state; every
/// call blocks, and may come from any thread.
class ShareService {
public:
    static constexpr int usualLongEdge = 2048;

    struct Made {
        std::vector<FileURL> files;        ///< In the order of the photos, one a shot.
        std::vector<std::string> failures; ///< A sentence for each shot of which there is no file.
    };
    /// Called after each shot, one call at a time, on the calling thread or one that helps it.
    using ProgressHandler = std::function<void(std::size_t done, std::size_t total)>;

    /// `temporaryFolder` is the user's; `files` outlives it.
    ShareService(FileSystem& files, const FileURL& temporaryFolder);

    /// The folder "Kelvara-Share", which holds a folder for each job.
    [[nodiscard]] const FileURL& exportRoot() const { return m_root; }
    /// A new empty folder in it, that nobody else may look into; removes old ones first.
    [[nodiscard]] Result<FileURL, FileError> makeJobFolder() const;

    /// `longEdge` below 1 stands for `usualLongEdge`. Of a shot the JPEG is taken, else the HEIF file, else
    /// the RAW file. The files never say where a photo was taken. Fails where there is no folder for them,
    /// and with `operation_canceled` soon after `stop` is requested, leaving nothing behind.
    [[nodiscard]] Result<Made, FileError> makeJPEGs(std::span<const PhotoItem> photos,
                                                    const std::optional<ExportLook>& look, int longEdge,
                                                    const std::stop_token& stop,
                                                    const ProgressHandler& onProgress = {}) const;

    /// Removes the job folders that are older than a day.
    void purgeOldExports() const;

private:
    FileSystem& m_files;
    FileURL m_root;
};

} // namespace kelvara
