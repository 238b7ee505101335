// Writes what the decoder makes of a file as a PPM for other programs to look at: decode_file FILE SIDE
// OUT.ppm, where a SIDE of 0 is the file's own size. The screen is sRGB.

#include "imaging/ImageDecoder.h"

#include <cstdlib>
#include <fstream>

using namespace kelvara;

int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) return 2;
    const int side = std::atoi(arguments[2]);
    const auto maximum = side > 0 ? std::optional{side} : std::nullopt;
    const auto image =
        ImageDecoder::prepareForDisplay(ImageDecoder::decodeOriginal(FileURL{arguments[1]}, maximum, {}), {});
    if (!image) return 1;
    std::ofstream out{arguments[3], std::ios::binary};
    out << "P6 " << image->width() << ' ' << image->height() << " 255\n";
    for (int y = 0; y < image->height(); ++y) {
        const auto row = image->row(y);
        for (std::size_t at = 0; at < row.size(); at += 4)
            out.put(static_cast<char>(row[at + 2]))
                .put(static_cast<char>(row[at + 1]))
                .put(static_cast<char>(row[at]));
    }
    return out.good() ? 0 : 1;
}
