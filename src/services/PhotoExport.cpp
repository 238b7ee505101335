#include "services/PhotoExport.h"

#include "imaging/ImageDecoder.h"
#include "presets/PresetRenderer.h"
#include "services/CopyNames.h"
#include "text/Localized.h"

#include <fmt/format.h>
#include <utility>

namespace kelvara {

namespace {

template <typename... Cases> struct Overloaded : Cases... { using Cases::operator()...; };
template <typename... Cases> Overloaded(Cases...) -> Overloaded<Cases...>;

using Error = PhotoExport::Error;

Result<BitmapPtr, Error> draw(const PhotoExport& photo, const std::stop_token& stop) {
    const auto depth = photo.settings.uses16Bit ? Depth::full : Depth::eight;
    auto image = ImageDecoder::decodeForExport(photo.source, photo.settings.longEdge, stop, depth);
    if (stop.stop_requested()) return Failure{Error{PhotoExport::Cancelled{}}};
    if (!image) return Failure{Error{PhotoExport::DecodeFailed{std::string{photo.source.name()}}}};
    if (photo.settings.appliesLook && photo.preset)
        image = PresetRenderer::apply(*photo.preset, std::move(image), depth, stop);
    if (!image) return Failure{Error{PhotoExport::Cancelled{}}};
    return image;
}

Failure<Error> notWritten(const PhotoExport& photo) {
    return Failure{Error{ImageWriter::WriteError{std::string{photo.source.name()}, photo.settings.format}}};
}

/// Gives the bytes their name, durably.
Result<std::int64_t, Error> write(const PhotoExport& photo, const std::string& bytes, FileSystem& files) {
    auto file = files.createFile(temporaryURL(photo.destination), bytes);
    if (!file || !(*file)->sync()) return notWritten(photo);
    if (const auto placed = (*file)->place(photo.destination); !placed) return Failure{Error{placed.error()}};
    if (const auto named = files.syncNames(photo.destination.parent()); !named)
        return Failure{Error{named.error()}};
    return static_cast<std::int64_t>(bytes.size());
}

} // namespace

Result<std::int64_t, PhotoExport::Error> PhotoExport::run(FileSystem& files,
                                                          const std::stop_token& stop) const {
    auto image = draw(*this, stop);
    if (!image) return Failure{image.error()};
    auto bytes = ImageWriter::encode({std::move(*image), source, rating}, settings, stop);
    if (stop.stop_requested()) return Failure{Error{Cancelled{}}};
    if (!bytes) return notWritten(*this);
    return write(*this, *bytes, files);
}

std::string message(const PhotoExport::Error& error) {
    return std::visit(Overloaded{
                          [](const PhotoExport::DecodeFailed& failed) {
                              return fmt::format(fmt::runtime(localized("Couldn't read {}.")),
                                                 failed.fileName);
                          },
                          [](const ImageWriter::WriteError& failed) { return ImageWriter::message(failed); },
                          [](const PhotoExport::Cancelled&) { return localized("Cancelled"); },
                          [](const FileError& failed) { return message(failed); },
                      },
                      error);
}

} // namespace kelvara
