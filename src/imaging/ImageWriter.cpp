#include "imaging/ImageWriter.h"

#include "imaging/writing/Encoders.h"
#include "text/Localized.h"

#include <exception>
#include <fmt/format.h>

namespace kelvara {
namespace {

/// What a format's files are called, to people.
std::string_view typeName(ExportSettings::Format format) {
    switch (format) {
    case ExportSettings::Format::jpeg:
        return "JPEG";
    case ExportSettings::Format::heif:
        return "HEIC";
    case ExportSettings::Format::png:
        return "PNG";
    }
    return "file";
}

std::optional<std::string> encoded(const ImageWriter::Picture& picture, const ExportSettings& settings,
                                   const std::stop_token& stop) {
    const auto& image = *picture.image;
    EmbeddedBlocks blocks;
    blocks.icc = image.profile()->icc();
    const auto format = settings.uses16Bit ? PixelFormat::bgrx16 : PixelFormat::bgrx8;
    switch (settings.format) {
    case ExportSettings::Format::jpeg:
        return encodedJpeg(image, settings.quality, blocks, stop);
    case ExportSettings::Format::heif:
        return encodedHeif(image, format, settings.quality, blocks, stop);
    case ExportSettings::Format::png:
        return encodedPng(image, format, blocks, stop);
    }
    return std::nullopt;
}

} // namespace

std::string ImageWriter::message(const WriteError& error) {
    return fmt::format(fmt::runtime(localized("Couldn't create a {} for {}.")), typeName(error.format),
                       error.fileName);
}

std::optional<std::string> ImageWriter::encode(const Picture& picture, const ExportSettings& settings,
                                               const std::stop_token& stop) {
    try {
        return encoded(picture, settings, stop);
    } catch (const std::exception&) { // memory is short
        return std::nullopt;
    }
}

} // namespace kelvara
