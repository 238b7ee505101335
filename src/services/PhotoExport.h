#pragma once

#include "imaging/ImageWriter.h"
#include "model/ExportSettings.h"
#include "model/Rating.h"
#include "model/Result.h"
#include "platform/FileSystem.h"
#include "presets/DevelopPreset.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <variant>

namespace kelvara {

/// One photo on its way to a new image file.
struct PhotoExport {
    struct DecodeFailed {
        std::string fileName;
        friend bool operator==(const DecodeFailed&, const DecodeFailed&) = default;
    };
    struct Cancelled {
        friend bool operator==(const Cancelled&, const Cancelled&) = default;
    };
    /// A FileError is of the file's name, once it was written.
    using Error = std::variant<DecodeFailed, ImageWriter::WriteError, Cancelled, FileError>;

    FileURL source;
    FileURL destination;                 ///< Never replaced.
    std::optional<DevelopPreset> preset; ///< With the photo's edits; ignored unless the settings apply looks.
    ExportSettings settings;
    std::optional<Rating> rating{};

    /// Decodes, draws and writes; gives the bytes of the file. Until it is whole and durable it has another
    /// name, and a failure leaves nothing behind. Blocks; any thread.
    [[nodiscard]] Result<std::int64_t, Error> run(FileSystem& files, const std::stop_token& stop) const;
};

/// One sentence for people.
[[nodiscard]] std::string message(const PhotoExport::Error& error);

} // namespace kelvara
