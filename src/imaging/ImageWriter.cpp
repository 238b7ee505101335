#include "imaging/ImageWriter.h"

#include "imaging/PictureScaler.h"
#include "imaging/writing/CarriedMetadata.h"
#include "imaging/writing/Encoders.h"
#include "text/Localized.h"

#include <exception>
#include <fmt/format.h>
#include <utility>

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

/// What EXIF shows of a picture before it is decoded; empty when memory is short.
std::string thumbnailOf(const BitmapPtr& image, const std::stop_token& stop) {
    constexpr int side = 160;
    constexpr double quality = 0.8;
    const auto small = scaledDown(image, side);
    if (!small) return {};
    return encodedJpeg(*small, quality, {}, stop).value_or(std::string{});
}

EmbeddedBlocks blocksOf(const ImageWriter::Picture& picture, const ExportSettings& settings,
                        const std::stop_token& stop) {
    // Of the formats only JPEG has a place for a thumbnail that programs look at.
    auto thumbnail =
        settings.format == ExportSettings::Format::jpeg ? thumbnailOf(picture.image, stop) : std::string{};
    auto metadata = CarriedMetadata::of(picture, settings.keepsLocation, std::move(thumbnail), stop);
    return {picture.image->profile(), std::move(metadata.exif), std::move(metadata.xmp)};
}

std::optional<std::string> encoded(ImageWriter::Picture picture, const ExportSettings& settings,
                                   const std::stop_token& stop) {
    const auto blocks = blocksOf(picture, settings, stop);
    const auto format = settings.uses16Bit ? PixelFormat::bgrx16 : PixelFormat::bgrx8;
    switch (settings.format) {
    case ExportSettings::Format::jpeg:
        return encodedJpeg(*picture.image, settings.quality, blocks, stop);
    case ExportSettings::Format::heif:
        return encodedHeif(std::move(picture.image), format, settings.quality, blocks, stop);
    case ExportSettings::Format::png:
        return encodedPng(*picture.image, format, blocks, stop);
    }
    return std::nullopt;
}

} // namespace

std::string ImageWriter::message(const WriteError& error) {
    return fmt::format(fmt::runtime(localized("Couldn't create a {} for {}.")), typeName(error.format),
                       error.fileName);
}

std::optional<std::string> ImageWriter::encode(Picture picture, const ExportSettings& settings,
                                               const std::stop_token& stop) {
    try {
        return encoded(std::move(picture), settings, stop);
    } catch (const std::exception&) { // memory is short
        return std::nullopt;
    }
}

} // namespace kelvara
