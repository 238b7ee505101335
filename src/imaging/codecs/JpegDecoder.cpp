#include "imaging/codecs/JpegDecoder.h"

#include "imaging/ColorTransform.h"
#include "imaging/PictureScaler.h"
#include "imaging/codecs/JpegSession.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace kelvara {
namespace {

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int iccMarker = JPEG_APP0 + 2;
constexpr std::string_view exifSignature{"Exif\0\0", 6};

/// Every block of 8 by 8 pixels takes a bit at the very least. What claims far more pixels than its bytes can
/// hold, cut-off files included, is a forgery that only costs memory and time.
constexpr std::int64_t mostPixelsPerByte = 512;

bool begin(JpegSession& session, bool keepsMarkers) {
    auto& state = session.state();
    bool isImage = false;
    const bool worked = session.guarded([&] {
        if (keepsMarkers) {
            jpeg_save_markers(&state, exifMarker, 0xFFFF);
            jpeg_save_markers(&state, iccMarker, 0xFFFF);
        }
        isImage = jpeg_read_header(&state, TRUE) == JPEG_HEADER_OK;
    });
    return worked && isImage && state.image_width > 0 && state.image_height > 0;
}

std::vector<std::uint8_t> exifBlock(const jpeg_decompress_struct& state) {
    for (const auto* marker = state.marker_list; marker; marker = marker->next) {
        if (marker->marker != exifMarker || marker->data_length <= exifSignature.size()) continue;
        if (std::memcmp(marker->data, exifSignature.data(), exifSignature.size()) != 0) continue;
        return {marker->data + exifSignature.size(), marker->data + marker->data_length};
    }
    return {};
}

std::vector<std::uint8_t> iccProfile(JpegSession& session) {
    JOCTET* data = nullptr;
    unsigned length = 0;
    session.guarded([&] {
        if (!jpeg_read_icc_profile(&session.state(), &data, &length)) data = nullptr;
    });
    std::vector<std::uint8_t> icc;
    if (data) icc.assign(data, data + length);
    std::free(data); // the library's allocation
    return icc;
}

/// The smallest of the library's eighths at which the picture still reaches `wanted`.
void chooseScale(jpeg_decompress_struct& state, PixelSize wanted) {
    const auto reaches = [&](unsigned eighths) {
        const auto scaled = [eighths](JDIMENSION side) { return (side * eighths + 7) / 8; };
        return scaled(state.image_width) >= static_cast<unsigned>(wanted.width) &&
               scaled(state.image_height) >= static_cast<unsigned>(wanted.height);
    };
    state.scale_denom = 8;
    state.scale_num = 8;
    // Only the powers of two have fast transforms.
    for (const unsigned eighths : {4U, 2U, 1U}) {
        if (!reaches(eighths)) break;
        state.scale_num = eighths;
    }
}

/// Whether the scans of a progressive file read so far hold what a component shows, to within half a grey
/// level.
bool suffices(const jpeg_component_info& component, const int* missingBits) {
    constexpr int mostLost = 4; // an eighth of a coefficient reaches a pixel
    const int side = component.DCT_scaled_size;
    if (side > 4 || !component.quant_table) return false;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            // Scans name the coefficients along diagonals, down and up by turns.
            const int diagonal = row + column;
            const int bits = missingBits[diagonal * (diagonal + 1) / 2 + (diagonal % 2 == 0 ? column : row)];
            const int quantum = component.quant_table->quantval[row * DCTSIZE + column];
            if (bits < 0 || ((1 << bits) - 1) * quantum > mostLost) return false;
        }
    }
    return true;
}

bool suffices(const jpeg_decompress_struct& state) {
    for (int i = 0; i < state.num_components; ++i)
        if (!suffices(state.comp_info[i], state.coef_bits[i])) return false;
    return true;
}

/// Begins to give rows. Of a progressive file that is to be smaller only the scans that it takes are read.
void start(jpeg_decompress_struct& state) {
    state.buffered_image = jpeg_has_multiple_scans(&state) && state.progressive_mode && state.scale_num < 8;
    jpeg_start_decompress(&state);
    if (!state.buffered_image) return;
    int event = 0;
    bool isEnough = false;
    while (event != JPEG_REACHED_EOI && !isEnough) {
        event = jpeg_consume_input(&state);
        state.progress->progress_monitor(reinterpret_cast<j_common_ptr>(&state));
        isEnough = event == JPEG_SCAN_COMPLETED && suffices(state);
    }
    if (isEnough) state.do_block_smoothing = FALSE; // guesses what a scan still to come would tell
    jpeg_start_output(&state, state.input_scan_number);
}

/// Turns rows of any JPEG colour model, four bytes a pixel as the library gives them, into blue, green, red
/// and a fourth byte.
class RowConverter {
public:
    RowConverter(jpeg_decompress_struct& state, const ColorProfilePtr& profile) {
        if (state.num_components == 4) {
            state.out_color_space = JCS_CMYK;
            // Programs that write the Adobe marker store ink inverted.
            m_isInverted = state.saw_Adobe_marker;
            const auto input =
                m_isInverted ? ColorTransform::Input::invertedCmyk : ColorTransform::Input::cmyk;
            if (profile) m_transform = ColorTransform::between(profile, input, ColorProfile::sRGB());
            return;
        }
        state.out_color_space = JCS_EXT_BGRX;
        m_passesThrough = true;
        if (profile && profile->model() == ColorProfile::Model::rgb) m_profile = profile;
    }

    /// Of the rows that come out.
    [[nodiscard]] const ColorProfilePtr& profile() const { return m_profile; }
    /// Whether the library's rows are right as they are.
    [[nodiscard]] bool passesThrough() const { return m_passesThrough; }

    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const {
        if (m_transform) {
            m_transform->convert(from, to, pixels);
            return;
        }
        const unsigned flip = m_isInverted ? 0 : 255;
        for (std::size_t i = 0; i < pixels; ++i, from += 4, to += 4) {
            const unsigned light = from[3] ^ flip;
            for (std::size_t c = 0; c < 3; ++c) {
                to[2 - c] = static_cast<std::uint8_t>(((from[c] ^ flip) * light + 127) / 255);
            }
            to[3] = 255;
        }
    }

private:
    std::shared_ptr<const ColorTransform> m_transform;
    ColorProfilePtr m_profile = ColorProfile::sRGB();
    bool m_isInverted = false;
    bool m_passesThrough = false;
};

class RowReader {
public:
    RowReader(JpegSession& session, const RowConverter& converter)
        : m_session{session}, m_converter{converter},
          m_line(static_cast<std::size_t>(session.state().output_width) * 4) {}

    /// The next row into `to`; false when the library gave up.
    bool read(std::uint8_t* to) {
        auto& state = m_session.state();
        JSAMPROW row = m_converter.passesThrough() ? to : m_line.data();
        JDIMENSION count = 0;
        const bool worked = m_session.guarded([&] { count = jpeg_read_scanlines(&state, &row, 1); });
        if (!worked || count == 0) return false;
        if (!m_converter.passesThrough()) m_converter.convert(m_line.data(), to, state.output_width);
        return true;
    }

private:
    JpegSession& m_session;
    const RowConverter& m_converter;
    std::vector<std::uint8_t> m_line;
};

} // namespace

std::optional<JpegHeader> readJpegHeader(const ByteRange& bytes) {
    JpegSession session{bytes};
    if (!begin(session, true)) return std::nullopt;
    const auto& state = session.state();
    JpegHeader header;
    header.size = {static_cast<int>(state.image_width), static_cast<int>(state.image_height)};
    header.components = state.num_components;
    header.exif = exifBlock(state);
    header.icc = iccProfile(session);
    return header;
}

BitmapPtr decodeJpeg(const ByteRange& bytes, const JpegRequest& request, const std::stop_token& stop) {
    JpegSession session{bytes, stop};
    if (stop.stop_requested() || !begin(session, false)) return nullptr;
    auto& state = session.state();
    const PixelSize stored{static_cast<int>(state.image_width), static_cast<int>(state.image_height)};
    const auto wanted = request.maximum ? stored.fittedTo(*request.maximum) : stored;
    if (wanted.pixels() > Bitmap::maximumPixels) return nullptr;
    if (stored.pixels() / mostPixelsPerByte > static_cast<std::int64_t>(bytes.size())) return nullptr;
    // Files in several scans are collected in memory as a whole.
    if (jpeg_has_multiple_scans(&state) && stored.pixels() > Bitmap::maximumPixels) return nullptr;
    chooseScale(state, wanted);
    const RowConverter converter{state, request.profile};
    if (!session.guarded([&] { start(state); })) return nullptr;
    const PixelSize given{static_cast<int>(state.output_width), static_cast<int>(state.output_height)};
    RowReader reader{session, converter};
    auto image = collectRows(
        given, wanted, converter.profile(), stop,
        [&reader](int, std::uint8_t* row) { return reader.read(row); }, PixelFormat::bgrx8,
        request.isDeep ? PixelFormat::bgrx16 : PixelFormat::bgrx8);
    return turnedUpright(std::move(image), request.orientation, stop);
}

} // namespace kelvara
