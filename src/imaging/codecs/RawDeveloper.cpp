#include "imaging/codecs/RawDeveloper.h"

#include "imaging/PictureScaler.h"

#include <libraw/libraw.h>

#include <cstddef>
#include <exception>
#include <limits>
#include <utility>

namespace kelvara {
namespace {

struct FreeImage {
    void operator()(libraw_processed_image_t* image) const { LibRaw::dcraw_clear_mem(image); }
};
using ProcessedImage = std::unique_ptr<libraw_processed_image_t, FreeImage>;

/// Asked by the library between its steps; anything but 0 ends them.
int askWhetherToStop(void* stop, LibRaw_progress, int, int) {
    return static_cast<const std::stop_token*>(stop)->stop_requested() ? 1 : 0;
}

/// Rows of grey, or of red, green and blue.
template <typename Sample> BitmapPtr bitmapOf(const libraw_processed_image_t& image, PixelFormat format,
                                              std::optional<int> maximum, const std::stop_token& stop) {
    const PixelSize given{image.width, image.height};
    const std::size_t colors = image.colors;
    const std::size_t rowSamples = colors * static_cast<std::size_t>(given.width);
    const std::size_t middle = colors / 2, last = colors - 1;
    const auto readRow = [&](int y, std::uint8_t* row) {
        const auto* from =
            reinterpret_cast<const Sample*>(image.data) + rowSamples * static_cast<std::size_t>(y);
        auto* to = reinterpret_cast<Sample*>(row);
        for (int x = 0; x < given.width; ++x, from += colors, to += 4) {
            to[0] = from[last];
            to[1] = from[middle];
            to[2] = from[0];
            to[3] = std::numeric_limits<Sample>::max();
        }
        return true;
    };
    const auto wanted = maximum ? given.fittedTo(*maximum) : given;
    return collectRows(given, wanted, ColorProfile::sRGB(), stop, readRow, format);
}

/// With as many bits as the library gives. Null for layouts that aren't known.
BitmapPtr bitmapOf(const libraw_processed_image_t& image, std::optional<int> maximum,
                   const std::stop_token& stop) {
    const PixelSize given{image.width, image.height};
    const std::size_t colors = image.colors;
    if (image.type != LIBRAW_IMAGE_BITMAP || (image.bits != 8 && image.bits != 16)) return nullptr;
    if ((colors != 1 && colors != 3) || given.isEmpty()) return nullptr;
    if (image.data_size / (image.bits / 8U) < static_cast<std::uint64_t>(given.pixels()) * colors)
        return nullptr;
    if (image.bits == 8) return bitmapOf<std::uint8_t>(image, PixelFormat::bgrx8, maximum, stop);
    return bitmapOf<std::uint16_t>(image, PixelFormat::bgrx16, maximum, stop);
}

} // namespace

RawDeveloper::RawDeveloper(std::unique_ptr<LibRaw> library) : m_library{std::move(library)} {}
RawDeveloper::~RawDeveloper() = default;

std::unique_ptr<RawDeveloper> RawDeveloper::open(const FileURL& url) {
    try {
        auto library =
            std::make_unique<LibRaw>(LIBRAW_OPIONS_NO_MEMERR_CALLBACK | LIBRAW_OPIONS_NO_DATAERR_CALLBACK);
        if (library->open_file(url.path().c_str()) != LIBRAW_SUCCESS) return nullptr;
        return std::unique_ptr<RawDeveloper>{new RawDeveloper{std::move(library)}};
    } catch (const std::exception&) {
        return nullptr;
    }
}

PixelSize RawDeveloper::size() const {
    const auto& sizes = m_library->imgdata.sizes;
    return {sizes.width, sizes.height};
}

Orientation RawDeveloper::orientation() const {
    switch (m_library->imgdata.sizes.flip) { // the library's code for a turn
    case 3:
        return Orientation{3};
    case 5:
        return Orientation{8};
    case 6:
        return Orientation{6};
    default:
        return Orientation{};
    }
}

RawDeveloper::Preview RawDeveloper::preview() {
    try {
        if (m_library->unpack_thumb() != LIBRAW_SUCCESS) return {};
        int error = LIBRAW_SUCCESS;
        const ProcessedImage image{m_library->dcraw_make_mem_thumb(&error)};
        if (!image || error != LIBRAW_SUCCESS) return {};
        if (image->type == LIBRAW_IMAGE_JPEG) return {{image->data, image->data + image->data_size}, nullptr};
        if (image->bits != 8) return {};
        return {{}, bitmapOf(*image, std::nullopt, {})};
    } catch (const std::exception&) {
        return {};
    }
}

RawDeveloper::Development RawDeveloper::develop(std::optional<int> maximum, PixelFormat format,
                                                const std::stop_token& stop) {
    try {
        const auto& sizes = m_library->imgdata.sizes;
        const PixelSize raw{sizes.raw_width, sizes.raw_height};
        if (raw.pixels() > Bitmap::maximumPixels || size().pixels() > Bitmap::maximumPixels) return {};
        auto& settings = m_library->imgdata.params;
        settings.use_camera_wb = 1;
        settings.output_bps = format == PixelFormat::bgrx8 ? 8 : 16;
        settings.output_color = 1; // sRGB, with its curve: the power and the slope near black
        settings.gamm[0] = 1 / 2.4;
        settings.gamm[1] = 12.92;
        settings.user_flip = 0; // whoever asked turns all pictures of the file alike
        settings.half_size = maximum && size().longestSide() / 2 >= *maximum ? 1 : 0;
        // Reading the sensor data is ended between rows, what follows between steps.
        const std::stop_callback cancel{stop, [this] { m_library->setCancelFlag(); }};
        // The handler's argument is not const, but only read.
        m_library->set_progress_handler(askWhetherToStop, const_cast<std::stop_token*>(&stop));
        const bool worked =
            m_library->unpack() == LIBRAW_SUCCESS && m_library->dcraw_process() == LIBRAW_SUCCESS;
        m_library->set_progress_handler(nullptr, nullptr);
        if (!worked || stop.stop_requested()) return {};
        int error = LIBRAW_SUCCESS;
        const ProcessedImage image{m_library->dcraw_make_mem_image(&error)};
        if (!image || error != LIBRAW_SUCCESS) return {};
        return {bitmapOf(*image, maximum, stop), m_library->error_count() > 0};
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace kelvara
