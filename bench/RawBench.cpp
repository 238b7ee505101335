// Thumbnails of RAW files, whose previews come in several sizes: what is read of the file, and the time
// against taking the largest preview out and decoding it whole, as tools that know only that one do.

#include "bench/Compare.h"
#include "bench/Photos.h"
#include "imaging/codecs/ImageSource.h"
#include "imaging/codecs/RawLayout.h"
#include "services/ThumbnailService.h"

#include <cstdlib>
#include <jpeglib.h>
#include <libraw/libraw.h>

using namespace kelvara;

namespace {

/// The preview that serves `maximum` best.
RawLayout::Preview chosen(const FileURL& url, int maximum) {
    RawLayout::Preview best;
    for (const auto& preview : RawLayout::read(ByteRange{ByteSource::ofFile(url)}).previews)
        if (best.size.isEmpty() || isBetterPreview(preview.size, best.size, maximum)) best = preview;
    return best;
}

void reportReading(const FileURL& url) {
    const auto decoding = ThumbnailService::Decoding::ofFiles();
    for (const int side : ThumbnailService::tiers) {
        const auto preview = chosen(url, side);
        const auto before = bench::bytesRead();
        static_cast<void>(decoding.thumbnail(url, side, {}));
        const auto read = static_cast<double>(bench::bytesRead() - before);
        const auto size = static_cast<double>(preview.jpeg.size());
        std::printf(
            "RAW thumbnail of %4d pixels from a preview of %4d: %8.1f kB read for %8.1f kB, %.2f times, "
            "%.1f kB more than 1.2 times\n",
            side, preview.size.longestSide(), read / 1e3, size / 1e3, read / size,
            std::max(0.0, read - 1.2 * size) / 1e3);
    }
}

/// Extracts and decodes the largest preview.
void decodeLargest(const FileURL& url) {
    LibRaw library;
    library.open_file(url.path().c_str());
    library.unpack_thumb();
    int error = 0;
    auto* preview = library.dcraw_make_mem_thumb(&error);
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, preview->data, preview->data_size);
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    std::vector<std::uint8_t> line(std::size_t{jpeg.output_width} * 3);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = line.data();
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_destroy_decompress(&jpeg);
    LibRaw::dcraw_clear_mem(preview);
}

} // namespace

int main() {
    const auto files = bench::photos(bench::PhotoKind::dng, 6);
    reportReading(files.front());
    const auto decoding = ThumbnailService::Decoding::ofFiles();
    for (const int side : ThumbnailService::tiers)
        bench::compare(
            "RAW thumbnails of " + std::to_string(side) + " pixels", 5, static_cast<double>(files.size()),
            "images",
            [&] {
                bench::onBothCores(files, [&](const FileURL& url) { decoding.thumbnail(url, side, {}); });
            },
            "whole preview out and decoded", [&] { bench::onBothCores(files, decodeLargest); },
            {bench::Clock::processor, side == 256 ? 5.0 : 0.0});
}
