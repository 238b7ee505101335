#include "imaging/codecs/PngSource.h"

#include "imaging/PictureScaler.h"
#include "imaging/codecs/ExifBlock.h"
#include "imaging/codecs/PngSession.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace kelvara {
namespace {

/// Deflate packs no better than this. What claims more pixels than its bytes can hold is a forgery that only
/// costs memory and time.
constexpr std::uint64_t mostBytesPerByte = 1040;

PixelSize sizeOf(PngSession& session) {
    return {static_cast<int>(png_get_image_width(session.state(), session.info())),
            static_cast<int>(png_get_image_height(session.state(), session.info()))};
}

bool begin(PngSession& session) {
    return session.guarded([&] { png_read_info(session.state(), session.info()); });
}

/// May stand before or after the pixels.
Orientation orientationIn(PngSession& session) {
    png_uint_32 length = 0;
    png_bytep exif = nullptr;
    const bool worked =
        session.guarded([&] { png_get_eXIf_1(session.state(), session.info(), &length, &exif); });
    if (!worked || !exif) return {};
    return ExifBlock::read(ByteRange{ByteSource::ofMemory({exif, exif + length})}).orientation;
}

ColorProfilePtr byIcc(PngSession& session) {
    png_charp name = nullptr;
    int compression = 0;
    png_bytep icc = nullptr;
    png_uint_32 length = 0;
    session.guarded(
        [&] { png_get_iCCP(session.state(), session.info(), &name, &compression, &icc, &length); });
    if (!icc) return nullptr;
    auto profile = ColorProfile::fromIcc({icc, length});
    return profile && profile->model() == ColorProfile::Model::rgb ? profile : nullptr;
}

ColorProfilePtr byGamma(PngSession& session) {
    double encoding = 0;
    bool isGiven = false;
    bool hasPrimaries = false;
    Primaries primaries = Primaries::sRGB;
    session.guarded([&] {
        isGiven = png_get_gAMA(session.state(), session.info(), &encoding) != 0;
        hasPrimaries = png_get_cHRM(session.state(), session.info(), &primaries.white.x, &primaries.white.y,
                                    &primaries.red.x, &primaries.red.y, &primaries.green.x,
                                    &primaries.green.y, &primaries.blue.x, &primaries.blue.y) != 0;
    });
    constexpr double least = 0.1, most = 10;
    if (!isGiven || encoding < least || encoding > most) return nullptr;
    return ColorProfile::fromGamma(hasPrimaries ? primaries : Primaries::sRGB, 1 / encoding);
}

/// What stands first in the format's own order of precedence.
ColorProfilePtr profileOf(PngSession& session) {
    if (auto profile = byIcc(session)) return profile;
    const bool namesSRGB = png_get_valid(session.state(), session.info(), PNG_INFO_sRGB) != 0;
    auto profile = namesSRGB ? nullptr : byGamma(session);
    return profile ? profile : ColorProfile::sRGB();
}

/// Blends with white by the fourth number, in the numbers as they are stored, as painting programs do.
template <typename Sample> void layOnWhite(std::span<Sample> row) {
    constexpr std::uint64_t most = std::numeric_limits<Sample>::max();
    for (std::size_t i = 0; i < row.size(); i += 4) {
        const std::uint64_t opacity = row[i + 3];
        if (opacity == most) continue;
        for (std::size_t c = i; c < i + 3; ++c)
            row[c] = static_cast<Sample>((row[c] * opacity + most * (most - opacity) + most / 2) / most);
        row[i + 3] = static_cast<Sample>(most);
    }
}

class PngSource : public ImageSource {
public:
    PngSource(ByteRange bytes, PngSession& session)
        : m_bytes{std::move(bytes)}, m_size{sizeOf(session)}, m_orientation{orientationIn(session)},
          m_profile{profileOf(session)}, m_isDeep{png_get_bit_depth(session.state(), session.info()) == 16} {}

    [[nodiscard]] std::optional<PixelSize> pixelSize() const override { return m_size; }
    [[nodiscard]] Orientation orientation() const override { return m_orientation; }
    [[nodiscard]] BitmapPtr storedPreview(std::optional<int>, const std::stop_token&) override {
        return nullptr;
    }
    [[nodiscard]] BitmapPtr image(std::optional<int> maximum, const std::stop_token& stop) override {
        return decode(maximum, stop, PixelFormat::bgrx8);
    }
    [[nodiscard]] BitmapPtr deepImage(std::optional<int> maximum, const std::stop_token& stop) override {
        return decode(maximum, stop, m_isDeep ? PixelFormat::bgrx16 : PixelFormat::bgrx8);
    }

private:
    [[nodiscard]] BitmapPtr decode(std::optional<int> maximum, const std::stop_token& stop,
                                   PixelFormat format) const;
    /// Makes the library's rows four numbers a pixel: blue, green, red and opacity.
    [[nodiscard]] bool prepare(PngSession& session, PixelFormat format) const;
    [[nodiscard]] BitmapPtr readPasses(PngSession& session, const std::stop_token& stop,
                                       PixelFormat format) const;

    ByteRange m_bytes;
    PixelSize m_size;
    Orientation m_orientation;
    ColorProfilePtr m_profile;
    bool m_isDeep;
};

bool PngSource::prepare(PngSession& session, PixelFormat format) const {
    auto* const state = session.state();
    auto* const info = session.info();
    const auto stored = std::uint64_t{png_get_rowbytes(state, info)} * static_cast<unsigned>(m_size.height);
    if (stored / mostBytesPerByte > m_bytes.size()) return false;
    std::size_t rowBytes = 0;
    const bool worked = session.guarded([&] {
        png_set_expand(state); // palettes, fewer than eight bits and transparent colours
        if (format == PixelFormat::bgrx8)
            png_set_scale_16(state);
        else if (std::endian::native == std::endian::little)
            png_set_swap(state);
        png_set_gray_to_rgb(state);
        png_set_bgr(state);
        png_set_add_alpha(state, 0xFFFF, PNG_FILLER_AFTER);
        png_set_interlace_handling(state);
        png_read_update_info(state, info);
        rowBytes = png_get_rowbytes(state, info);
    });
    return worked && rowBytes == static_cast<std::size_t>(m_size.width) * bytesPerPixel(format);
}

/// An interlaced picture comes in seven passes over its rows, so it is held as a whole.
BitmapPtr PngSource::readPasses(PngSession& session, const std::stop_token& stop, PixelFormat format) const {
    std::shared_ptr<Bitmap> whole = Bitmap::create(m_size, m_profile, format);
    if (!whole) return nullptr;
    constexpr int passes = 7;
    constexpr std::uint8_t missing = 128;
    std::memset(whole->data(), missing, whole->byteCount());
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < m_size.height; ++y) {
            if (stop.stop_requested()) return nullptr;
            auto* row = whole->row(y).data();
            if (!session.guarded([&] { png_read_row(session.state(), nullptr, row); })) {
                if (pass == 0 && y == 0) return nullptr;
                return whole;
            }
        }
    }
    return whole;
}

BitmapPtr PngSource::decode(std::optional<int> maximum, const std::stop_token& stop,
                            PixelFormat format) const {
    PngSession session{m_bytes};
    if (stop.stop_requested() || !begin(session) || !prepare(session, format)) return nullptr;
    const auto wanted = maximum ? m_size.fittedTo(*maximum) : m_size;
    const auto samples = static_cast<std::size_t>(m_size.width) * 4;
    BitmapPtr whole;
    if (png_get_interlace_type(session.state(), session.info()) != PNG_INTERLACE_NONE) {
        whole = readPasses(session, stop, format);
        if (!whole) return nullptr;
    }
    const auto readRow = [&](int y, std::uint8_t* row) {
        if (whole)
            std::memcpy(row, whole->row(y).data(), whole->rowBytes());
        else if (!session.guarded([&] { png_read_row(session.state(), row, nullptr); }))
            return false;
        if (format == PixelFormat::bgrx8)
            layOnWhite(std::span{row, samples});
        else
            layOnWhite(std::span{reinterpret_cast<std::uint16_t*>(row), samples});
        return true;
    };
    auto bitmap = collectRows(m_size, wanted, m_profile, stop, readRow, format);
    if (!bitmap) return nullptr;
    session.guarded([&] { png_read_end(session.state(), session.info()); });
    return turnedUpright(std::move(bitmap), orientationIn(session), stop);
}

} // namespace

std::unique_ptr<ImageSource> openPng(ByteRange bytes) {
    PngSession session{bytes};
    if (!begin(session)) return nullptr;
    return std::make_unique<PngSource>(std::move(bytes), session);
}

} // namespace kelvara
