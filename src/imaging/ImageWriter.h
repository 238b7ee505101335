#pragma once

#include "imaging/Bitmap.h"
#include "model/ExportSettings.h"
#include "model/FileURL.h"
#include "model/Rating.h"
#include "model/Result.h"
#include "platform/FileSystem.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>

/// Writes pictures as image files for others. Free of state; every function blocks and may run on any
/// thread.
namespace kelvara::ImageWriter {

/// No file could be made of the photo: its encoder failed, or the disk is full.
struct WriteError {
    std::string fileName; ///< Of the photo.
    ExportSettings::Format format = ExportSettings::Format::jpeg;
    friend bool operator==(const WriteError&, const WriteError&) = default;
};
/// One sentence for people.
[[nodiscard]] std::string message(const WriteError& error);

/// What the picture is made of, and what goes along with it.
struct Picture {
    BitmapPtr image; ///< Upright, in the size to be written; not null.
    FileURL source;  ///< The photo whose metadata goes along.
    std::optional<Rating> rating;
};

/// The bytes of a file that shows the picture with its colour profile, with what the source says about
/// itself where that can be read, corrected for what is written. Empty when the encoder failed or `stop` was
/// requested. Whoever moves the picture in lets its pixels go as soon as they are not needed any more.
[[nodiscard]] std::optional<std::string> encode(Picture picture, const ExportSettings& settings,
                                                const std::stop_token& stop);

} // namespace kelvara::ImageWriter
