#include "imaging/codecs/HeifSource.h"

#include "imaging/ColorTransform.h"
#include "imaging/PictureScaler.h"
#include "imaging/codecs/HeifObjects.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>
#include <vector>

namespace kelvara {
namespace {

PixelSize sizeOf(const heif_image_handle& handle) {
    return {heif_image_handle_get_width(&handle), heif_image_handle_get_height(&handle)};
}

/// Null when the picture names its colours in another way, or not.
HeifOwned<heif_color_profile_nclx> codePointsOf(const heif_image_handle& handle) {
    heif_color_profile_nclx* nclx = nullptr;
    if (heif_image_handle_get_color_profile_type(&handle) != heif_color_profile_type_nclx ||
        !heifWorked(heif_image_handle_get_nclx_color_profile(&handle, &nclx))) {
        return nullptr;
    }
    return HeifOwned<heif_color_profile_nclx>{nclx};
}

/// Null when the picture doesn't name its colours.
ColorProfilePtr profileOf(const heif_image_handle& handle) {
    if (const auto nclx = codePointsOf(handle)) {
        return ColorProfile::fromCodePoints(nclx->color_primaries, nclx->transfer_characteristics);
    }
    std::vector<std::uint8_t> icc(heif_image_handle_get_raw_color_profile_size(&handle));
    if (icc.empty() || !heifWorked(heif_image_handle_get_raw_color_profile(&handle, icc.data())))
        return nullptr;
    auto profile = ColorProfile::fromIcc(icc);
    return profile && profile->model() == ColorProfile::Model::rgb ? profile : nullptr;
}

/// From red first to blue first.
void swapRow(const std::uint8_t* from, std::uint8_t* to, int pixels) {
    for (int x = 0; x < pixels; ++x, from += 4, to += 4) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
        to[3] = 255;
    }
}

/// The same for numbers of `bits` in 16, which come out over the whole range.
void widenRow(const std::uint8_t* fromBytes, std::uint8_t* toBytes, int pixels, unsigned bits) {
    const auto* from = reinterpret_cast<const std::uint16_t*>(fromBytes);
    auto* to = reinterpret_cast<std::uint16_t*>(toBytes);
    const auto wide = [bits](unsigned value) {
        return static_cast<std::uint16_t>(value << (16 - bits) | value >> (2 * bits - 16));
    };
    for (int x = 0; x < pixels; ++x, from += 4, to += 4) {
        to[0] = wide(from[2]);
        to[1] = wide(from[1]);
        to[2] = wide(from[0]);
        to[3] = 0xFFFF;
    }
}

/// The library turns and mirrors by the container's own properties, which EXIF only repeats; so sizes and
/// pixels are upright already.
class HeifSource : public ImageSource {
public:
    HeifSource(HeifOwned<heif_context> context, HeifOwned<heif_image_handle> primary)
        : m_context{std::move(context)}, m_primary{std::move(primary)} {}

    [[nodiscard]] std::optional<PixelSize> pixelSize() const override { return sizeOf(*m_primary); }
    [[nodiscard]] Orientation orientation() const override { return {}; }

    [[nodiscard]] BitmapPtr storedPreview(std::optional<int> maximum, const std::stop_token& stop) override {
        const auto preview = choosePreview(maximum);
        return preview ? decode(*preview, maximum, PixelFormat::bgrx8, stop) : nullptr;
    }

    [[nodiscard]] BitmapPtr image(std::optional<int> maximum, const std::stop_token& stop) override {
        if (!isDeep() || !isHighDynamicRange()) return decode(*m_primary, maximum, PixelFormat::bgrx8, stop);
        // Eight bits of its steep curve would show steps in a clear sky.
        auto deep = decode(*m_primary, maximum, PixelFormat::bgrx16, stop);
        return converted(std::move(deep), ColorProfile::displayP3(), PixelFormat::bgrx8, stop);
    }

    [[nodiscard]] BitmapPtr deepImage(std::optional<int> maximum, const std::stop_token& stop) override {
        return decode(*m_primary, maximum, isDeep() ? PixelFormat::bgrx16 : PixelFormat::bgrx8, stop);
    }

private:
    [[nodiscard]] bool isDeep() const {
        return heif_image_handle_get_luma_bits_per_pixel(m_primary.get()) > 8;
    }
    [[nodiscard]] bool isHighDynamicRange() const {
        const auto nclx = codePointsOf(*m_primary);
        return nclx && (nclx->transfer_characteristics == heif_transfer_characteristic_ITU_R_BT_2100_0_PQ ||
                        nclx->transfer_characteristics == heif_transfer_characteristic_ITU_R_BT_2100_0_HLG);
    }
    [[nodiscard]] HeifOwned<heif_image_handle> choosePreview(std::optional<int> maximum) const;
    [[nodiscard]] BitmapPtr decode(const heif_image_handle& handle, std::optional<int> maximum,
                                   PixelFormat format, const std::stop_token& stop) const;

    HeifOwned<heif_context> m_context;
    HeifOwned<heif_image_handle> m_primary;
};

HeifOwned<heif_image_handle> HeifSource::choosePreview(std::optional<int> maximum) const {
    const int count = std::clamp(heif_image_handle_get_number_of_thumbnails(m_primary.get()), 0, 16);
    std::vector<heif_item_id> ids(static_cast<std::size_t>(count));
    ids.resize(static_cast<std::size_t>(
        heif_image_handle_get_list_of_thumbnail_IDs(m_primary.get(), ids.data(), count)));
    HeifOwned<heif_image_handle> best;
    for (const auto id : ids) {
        heif_image_handle* handle = nullptr;
        if (!heifWorked(heif_image_handle_get_thumbnail(m_primary.get(), id, &handle))) continue;
        HeifOwned<heif_image_handle> candidate{handle};
        if (!best || isBetterPreview(sizeOf(*candidate), sizeOf(*best), maximum)) best = std::move(candidate);
    }
    return best;
}

BitmapPtr HeifSource::decode(const heif_image_handle& handle, std::optional<int> maximum, PixelFormat format,
                             const std::stop_token& stop) const {
    if (stop.stop_requested() || sizeOf(handle).pixels() > Bitmap::maximumPixels) return nullptr;
    const bool isDeep = format == PixelFormat::bgrx16;
    const HeifOwned<heif_decoding_options> options{heif_decoding_options_alloc()};
    options->convert_hdr_to_8bit = isDeep ? 0 : 1;
    constexpr auto deepChroma = std::endian::native == std::endian::little
                                    ? heif_chroma_interleaved_RRGGBBAA_LE
                                    : heif_chroma_interleaved_RRGGBBAA_BE;
    heif_image* decoded = nullptr;
    if (!heifWorked(heif_decode_image(&handle, &decoded, heif_colorspace_RGB,
                                      isDeep ? deepChroma : heif_chroma_interleaved_RGBA, options.get()))) {
        return nullptr;
    }
    const HeifOwned<heif_image> image{decoded};
    int stride = 0;
    const auto* pixels = heif_image_get_plane_readonly(decoded, heif_channel_interleaved, &stride);
    const PixelSize given{heif_image_get_width(decoded, heif_channel_interleaved),
                          heif_image_get_height(decoded, heif_channel_interleaved)};
    if (!pixels || given.isEmpty()) return nullptr;
    auto profile = profileOf(handle);
    if (!profile) profile = profileOf(*m_primary); // thumbnails leave it to their picture
    if (!profile) profile = ColorProfile::sRGB();
    const auto bits = static_cast<unsigned>(
        std::clamp(heif_image_get_bits_per_pixel_range(decoded, heif_channel_interleaved), 8, 16));
    const auto readRow = [&](int y, std::uint8_t* to) {
        const auto* from = pixels + std::ptrdiff_t{y} * stride;
        if (isDeep)
            widenRow(from, to, given.width, bits);
        else
            swapRow(from, to, given.width);
        return true;
    };
    const auto wanted = maximum ? given.fittedTo(*maximum) : given;
    return collectRows(given, wanted, std::move(profile), stop, readRow, format);
}

} // namespace

std::unique_ptr<ImageSource> openHeif(const FileURL& url) {
    HeifOwned<heif_context> context{heif_context_alloc()};
    if (!context || !heifWorked(heif_context_read_from_file(context.get(), url.path().c_str(), nullptr)))
        return nullptr;
    heif_image_handle* primary = nullptr;
    if (!heifWorked(heif_context_get_primary_image_handle(context.get(), &primary))) return nullptr;
    return std::make_unique<HeifSource>(std::move(context), HeifOwned<heif_image_handle>{primary});
}

} // namespace kelvara
