#include "imaging/codecs/JumpGuard.h"
#include "imaging/writing/Encoders.h"
#include "imaging/writing/GrowingFile.h"
#include "imaging/writing/RowsInFormat.h"

#include <bit>
#include <utility>

#include <png.h>

namespace kelvara {
namespace {

/// One compression by libpng into memory.
class PngCompression : public JumpGuard {
public:
    PngCompression() {
        m_state =
            png_create_write_struct(PNG_LIBPNG_VER_STRING, this, giveUp, [](png_structp, png_const_charp) {});
        if (m_state) m_info = png_create_info_struct(m_state);
        if (!m_info) refuse();
        guarded([this] { png_set_write_fn(m_state, this, write, [](png_structp) {}); });
    }
    ~PngCompression() { png_destroy_write_struct(&m_state, &m_info); }
    PngCompression(const PngCompression&) = delete;
    PngCompression& operator=(const PngCompression&) = delete;

    [[nodiscard]] png_structp state() { return m_state; }
    [[nodiscard]] png_infop info() { return m_info; }
    [[nodiscard]] std::string file() && { return std::move(m_file); }

private:
    static void giveUp(png_structp state, png_const_charp) {
        static_cast<PngCompression*>(png_get_error_ptr(state))->fail();
    }
    static void write(png_structp state, png_bytep bytes, std::size_t count) {
        auto& compression = *static_cast<PngCompression*>(png_get_io_ptr(state));
        if (!appended(compression.m_file, bytes, count)) compression.fail();
    }

    png_structp m_state = nullptr;
    png_infop m_info = nullptr;
    std::string m_file;
};

void setBlocks(PngCompression& to, const EmbeddedBlocks& blocks) {
    if (blocks.profile) {
        const auto& icc = blocks.profile->icc();
        png_set_iCCP(to.state(), to.info(), "ICC profile", PNG_COMPRESSION_TYPE_BASE, icc.data(),
                     static_cast<png_uint_32>(icc.size()));
    }
    if (!blocks.exif.empty()) {
        png_set_eXIf_1(to.state(), to.info(), static_cast<png_uint_32>(blocks.exif.size()),
                       const_cast<png_bytep>(blocks.exif.data())); // only read
    }
    if (!blocks.xmp.empty()) {
        char keyword[] = "XML:com.adobe.xmp";
        png_text text{};
        text.compression = PNG_ITXT_COMPRESSION_NONE;
        text.key = keyword;
        text.text = const_cast<png_charp>(blocks.xmp.data()); // only read
        text.itxt_length = blocks.xmp.size();
        png_set_text(to.state(), to.info(), &text, 1);
    }
}

void begin(PngCompression& to, const Bitmap& image, PixelFormat format, const EmbeddedBlocks& blocks) {
    const bool isDeep = format == PixelFormat::bgrx16;
    png_set_IHDR(to.state(), to.info(), static_cast<png_uint_32>(image.width()),
                 static_cast<png_uint_32>(image.height()), isDeep ? 16 : 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Measured on photos: the usual level 6 takes three times as long for 3 % less.
    png_set_compression_level(to.state(), 3);
    png_set_filter(to.state(), PNG_FILTER_TYPE_BASE, PNG_ALL_FILTERS);
    setBlocks(to, blocks);
    png_write_info(to.state(), to.info());
    png_set_bgr(to.state());
    png_set_filler(to.state(), 0, PNG_FILLER_AFTER); // the fourth number is none of the file's
    if (isDeep && std::endian::native == std::endian::little) png_set_swap(to.state());
}

} // namespace

std::optional<std::string> encodedPng(const Bitmap& image, PixelFormat format, const EmbeddedBlocks& blocks,
                                      const std::stop_token& stop) {
    PngCompression compression;
    if (!compression.guarded([&] { begin(compression, image, format, blocks); })) return std::nullopt;
    RowsInFormat rows{image, format};
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = rows.row(y);
        if (stop.stop_requested() || !compression.guarded([&] { png_write_row(compression.state(), row); }))
            return std::nullopt;
    }
    if (!compression.guarded([&] { png_write_end(compression.state(), nullptr); })) return std::nullopt;
    return std::move(compression).file();
}

} // namespace kelvara
