#include "samplecard/HEIC.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <libheif/heif.h>
#include <memory>
#include <mutex>
#include <stdexcept>

namespace kelvara::samplecard {
namespace {

void check(heif_error error) {
    if (error.code != heif_error_Ok) throw std::runtime_error(error.message);
}

template <auto release> struct Releaser {
    template <typename T> void operator()(T* object) const { release(object); }
};
template <typename T, auto release> using Owned = std::unique_ptr<T, Releaser<release>>;

using Context = Owned<heif_context, heif_context_free>;
using Encoder = Owned<heif_encoder, heif_encoder_release>;
using Image = Owned<heif_image, heif_image_release>;
using Handle = Owned<heif_image_handle, heif_image_handle_release>;
using Options = Owned<heif_encoding_options, heif_encoding_options_free>;

Image imageOf(const Picture& picture, const HEICOptions& options) {
    const bool deep = options.bits > 8;
    heif_image* raw = nullptr;
    check(heif_image_create(picture.width, picture.height, heif_colorspace_RGB,
                            deep ? heif_chroma_interleaved_RRGGBB_LE : heif_chroma_interleaved_RGB, &raw));
    Image image{raw};
    check(heif_image_add_plane(image.get(), heif_channel_interleaved, picture.width, picture.height,
                               options.bits));
    int stride = 0;
    std::uint8_t* plane = heif_image_get_plane(image.get(), heif_channel_interleaved, &stride);
    const std::vector<std::uint16_t> samples = samplesIn(options.colours, picture);
    const auto perRow = static_cast<std::size_t>(picture.width) * 3;
    const std::uint32_t top = (1U << options.bits) - 1;
    for (int y = 0; y < picture.height; ++y) {
        std::uint8_t* row = plane + static_cast<std::ptrdiff_t>(y) * stride;
        const std::uint16_t* source = &samples[static_cast<std::size_t>(y) * perRow];
        for (std::size_t i = 0; i < perRow; ++i) {
            const std::uint32_t value = (source[i] * top + 32767) / 65535;
            if (deep) {
                row[i * 2] = static_cast<std::uint8_t>(value & 0xFF);
                row[i * 2 + 1] = static_cast<std::uint8_t>(value >> 8);
            } else {
                row[i] = static_cast<std::uint8_t>(value);
            }
        }
    }
    const std::string profile = profileBytes(options.colours);
    check(heif_image_set_raw_color_profile(image.get(), "prof", profile.data(), profile.size()));
    return image;
}

heif_error append(heif_context*, const void* data, std::size_t size, void* out) {
    static_cast<std::string*>(out)->append(static_cast<const char*>(data), size);
    return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

} // namespace

std::string encodeHEIC(const Picture& upright, const Shot& shot, const HEICOptions& options) {
    // The encoder looks up the machine's memory nodes through a library that is not safe for several threads;
    // it brings threads of its own.
    static std::mutex oneAtATime;
    const std::lock_guard lock{oneAtATime};
    const Picture stored = storedWith(upright, shot.orientation);
    const Context context{heif_context_alloc()};
    heif_encoder* rawEncoder = nullptr;
    check(heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, &rawEncoder));
    const Encoder encoder{rawEncoder};
    check(heif_encoder_set_lossy_quality(encoder.get(), options.quality));
    check(heif_encoder_set_parameter_string(encoder.get(), "preset", "ultrafast"));

    const Options encoding{heif_encoding_options_alloc()};
    encoding->image_orientation = static_cast<heif_orientation>(shot.orientation);
    const Image image = imageOf(stored, options);
    heif_image_handle* rawHandle = nullptr;
    check(heif_context_encode_image(context.get(), image.get(), encoder.get(), encoding.get(), &rawHandle));
    const Handle handle{rawHandle};

    const std::string exif = exifBlock(shot, stored.width, stored.height, {});
    check(heif_context_add_exif_metadata(context.get(), handle.get(), exif.data(),
                                         static_cast<int>(exif.size())));
    // The library refuses one that is not smaller than the picture.
    if (options.thumbnailSide > 0 && options.thumbnailSide < std::max(stored.width, stored.height)) {
        heif_image_handle* thumbnail = nullptr;
        check(heif_context_encode_thumbnail(context.get(), image.get(), handle.get(), encoder.get(),
                                            encoding.get(), options.thumbnailSide, &thumbnail));
        Handle{thumbnail}.reset();
    }
    std::string bytes;
    heif_writer writer{1, append};
    check(heif_context_write(context.get(), &writer, &bytes));
    return bytes;
}

} // namespace kelvara::samplecard
