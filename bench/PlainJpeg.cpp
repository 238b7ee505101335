#include "bench/PlainJpeg.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <jpeglib.h>

namespace kelvara::bench {
namespace {

/// Adds up the source pixels of each result pixel of a row.
void addRow(const std::uint8_t* from, int width, int resultWidth, std::uint32_t* sums) {
    for (int x = 0; x < resultWidth; ++x, sums += 3) {
        const int end = static_cast<int>(std::int64_t{x + 1} * width / resultWidth);
        for (int i = static_cast<int>(std::int64_t{x} * width / resultWidth); i < end; ++i) {
            sums[0] += from[i * 4];
            sums[1] += from[i * 4 + 1];
            sums[2] += from[i * 4 + 2];
        }
    }
}

void average(const std::uint32_t* sums, int width, int resultWidth, int rows, std::uint8_t* to) {
    for (int x = 0; x < resultWidth; ++x, sums += 3, to += 4) {
        const auto columns =
            std::int64_t{x + 1} * width / resultWidth - std::int64_t{x} * width / resultWidth;
        const auto area = static_cast<std::uint32_t>(columns * rows);
        for (int c = 0; c < 3; ++c) to[c] = static_cast<std::uint8_t>(sums[c] / area);
        to[3] = 255;
    }
}

} // namespace

PlainPicture decodePlainly(const std::string& path, int maximum) {
    // As a whole, because the library decodes faster where it need not look for the end of a buffer.
    std::vector<std::uint8_t> bytes(std::filesystem::file_size(path));
    std::ifstream{path, std::ios::binary}.read(reinterpret_cast<char*>(bytes.data()),
                                               static_cast<std::streamsize>(bytes.size()));
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, bytes.data(), bytes.size());
    jpeg_read_header(&jpeg, TRUE);
    const PixelSize stored{static_cast<int>(jpeg.image_width), static_cast<int>(jpeg.image_height)};
    PlainPicture result;
    result.size = maximum > 0 ? stored.fittedTo(maximum) : stored;
    jpeg.scale_denom = 8;
    jpeg.scale_num = 8;
    while (jpeg.scale_num > 1 && stored.longestSide() * static_cast<int>(jpeg.scale_num) / 16 >= maximum &&
           maximum > 0)
        jpeg.scale_num /= 2;
    jpeg.out_color_space = JCS_EXT_BGRX;
    jpeg_start_decompress(&jpeg);
    const int width = static_cast<int>(jpeg.output_width), height = static_cast<int>(jpeg.output_height);
    const auto resultRow = static_cast<std::size_t>(result.size.width) * 4;
    result.pixels.resize(resultRow * static_cast<std::size_t>(result.size.height));
    if (maximum == 0) {
        while (jpeg.output_scanline < jpeg.output_height) {
            JSAMPROW row = result.pixels.data() + resultRow * jpeg.output_scanline;
            jpeg_read_scanlines(&jpeg, &row, 1);
        }
    } else {
        std::vector<std::uint8_t> line(static_cast<std::size_t>(width) * 4);
        std::vector<std::uint32_t> sums;
        for (int y = 0, begin = 0; y < result.size.height; ++y) {
            const int end = static_cast<int>(std::int64_t{y + 1} * height / result.size.height);
            sums.assign(static_cast<std::size_t>(result.size.width) * 3, 0);
            for (int i = begin; i < end; ++i) {
                JSAMPROW row = line.data();
                jpeg_read_scanlines(&jpeg, &row, 1);
                addRow(row, width, result.size.width, sums.data());
            }
            average(sums.data(), width, result.size.width, end - begin,
                    result.pixels.data() + resultRow * static_cast<std::size_t>(y));
            begin = end;
        }
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return result;
}

} // namespace kelvara::bench
