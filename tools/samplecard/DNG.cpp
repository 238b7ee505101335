#include "samplecard/DNG.h"

#include "samplecard/Colour.h"
#include "samplecard/JPEG.h"
#include "samplecard/LosslessJPEG.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace kelvara::samplecard {
namespace {

// TIFF 6.0, TIFF/EP and DNG 1.4.
enum Tag {
    tagNewSubfileType = 254,
    tagWidth = 256,
    tagHeight = 257,
    tagBitsPerSample = 258,
    tagCompression = 259,
    tagPhotometric = 262,
    tagStripOffsets = 273,
    tagSamplesPerPixel = 277,
    tagRowsPerStrip = 278,
    tagStripByteCounts = 279,
    tagPlanarConfiguration = 284,
    tagSubDirectories = 330,
    tagYCbCrSubSampling = 530,
    tagCFARepeatPatternDim = 33421,
    tagCFAPattern = 33422,
    tagDNGVersion = 50706,
    tagDNGBackwardVersion = 50707,
    tagUniqueCameraModel = 50708,
    tagCFAPlaneColor = 50710,
    tagCFALayout = 50711,
    tagBlackLevel = 50714,
    tagWhiteLevel = 50717,
    tagDefaultCropOrigin = 50719,
    tagDefaultCropSize = 50720,
    tagColorMatrix1 = 50721,
    tagAsShotNeutral = 50728,
    tagCalibrationIlluminant1 = 50778,
};

constexpr int blackLevel = 512;
constexpr int whiteLevel = 15800; // of 14 bits

using Matrix = std::array<std::array<double, 3>, 3>;

// What the invented sensor sees of linear sRGB, each row adding up to 1 so that white stays neutral ...
constexpr Matrix sensorFromRGB{{{0.62, 0.33, 0.05}, {0.14, 0.76, 0.10}, {0.04, 0.22, 0.74}}};
// ... and how much weaker its red and blue are than its green under daylight.
constexpr std::array<double, 3> neutral{0.48, 1, 0.62};
// IEC 61966-2-1: XYZ under D65 to linear sRGB.
constexpr Matrix rgbFromXYZ{
    {{3.2406, -1.5372, -0.4986}, {-0.9689, 1.8758, 0.0415}, {0.0557, -0.2040, 1.0570}}};

std::vector<TiffDirectory::Rational> colourMatrix() {
    std::vector<TiffDirectory::Rational> cells;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            double sum = 0;
            for (std::size_t i = 0; i < 3; ++i) sum += sensorFromRGB[row][i] * rgbFromXYZ[i][column];
            cells.emplace_back(std::lround(sum * neutral[row] * 10000), 10000);
        }
    }
    return cells;
}

const std::vector<float>& linearOfSample() {
    static const std::vector<float> values = [] {
        std::vector<float> filled(65536);
        for (std::size_t i = 0; i < filled.size(); ++i)
            filled[i] = linearFromEncoded(static_cast<float>(i) / 65535.0F);
        return filled;
    }();
    return values;
}

std::vector<std::uint16_t> mosaicOf(const Picture& picture) {
    const std::vector<float>& linear = linearOfSample();
    std::array<std::array<float, 3>, 3> weights{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t i = 0; i < 3; ++i)
            weights[row][i] =
                static_cast<float>(sensorFromRGB[row][i] * neutral[row] * (whiteLevel - blackLevel));
    std::vector<std::uint16_t> mosaic(picture.samples.size() / 3);
    std::size_t position = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x, ++position) {
            const auto& weight = weights[static_cast<std::size_t>((x & 1) + (y & 1))];
            const std::uint16_t* pixel = picture.at(x, y);
            const float light =
                weight[0] * linear[pixel[0]] + weight[1] * linear[pixel[1]] + weight[2] * linear[pixel[2]];
            mosaic[position] = static_cast<std::uint16_t>(blackLevel + static_cast<int>(light + 0.5F));
        }
    }
    return mosaic;
}

/// Big-endian bits without gaps, each row beginning at a byte.
std::string packed14(const std::vector<std::uint16_t>& mosaic, int width) {
    std::string out;
    out.reserve(mosaic.size() * 7 / 4 + mosaic.size() / static_cast<std::size_t>(width) + 8);
    std::uint32_t pending = 0;
    int count = 0;
    int column = 0;
    for (const std::uint16_t sample : mosaic) {
        pending = (pending << 14) | sample;
        count += 14;
        if (++column == width) {
            column = 0;
            const int missing = (8 - count % 8) % 8;
            pending <<= missing;
            count += missing;
        }
        for (; count >= 8; count -= 8) out.push_back(static_cast<char>((pending >> (count - 8)) & 0xFF));
    }
    return out;
}

std::string littleEndian(const std::vector<std::uint16_t>& mosaic) {
    std::string out(mosaic.size() * 2, '\0');
    for (std::size_t i = 0; i < mosaic.size(); ++i) {
        out[i * 2] = static_cast<char>(mosaic[i] & 0xFF);
        out[i * 2 + 1] = static_cast<char>(mosaic[i] >> 8);
    }
    return out;
}

void addPreview(TiffDirectory& directory, const Picture& preview, int quality) {
    JPEGOptions options;
    options.quality = quality;
    options.embedsProfile = false;
    directory.longs(tagNewSubfileType, {1});
    directory.longs(tagWidth, {static_cast<std::uint32_t>(preview.width)});
    directory.longs(tagHeight, {static_cast<std::uint32_t>(preview.height)});
    directory.shorts(tagBitsPerSample, {8, 8, 8});
    directory.shorts(tagCompression, {7});
    directory.shorts(tagPhotometric, {6});
    directory.shorts(tagSamplesPerPixel, {3});
    directory.longs(tagRowsPerStrip, {static_cast<std::uint32_t>(preview.height)});
    directory.shorts(tagPlanarConfiguration, {1});
    directory.shorts(tagYCbCrSubSampling, {2, 2});
    directory.data(tagStripOffsets, tagStripByteCounts, encodeJPEG(preview, options));
}

TiffDirectory rawDirectory(const Picture& picture, DNGOptions::Storage storage) {
    const std::vector<std::uint16_t> mosaic = mosaicOf(picture);
    const auto width = static_cast<std::uint32_t>(picture.width);
    const auto height = static_cast<std::uint32_t>(picture.height);
    const bool lossless = storage == DNGOptions::Storage::lossless;
    const bool packed = storage == DNGOptions::Storage::fourteenBitsPacked;
    TiffDirectory raw;
    raw.longs(tagNewSubfileType, {0});
    raw.longs(tagWidth, {width});
    raw.longs(tagHeight, {height});
    raw.shorts(tagBitsPerSample, {packed ? 14 : 16});
    raw.shorts(tagCompression, {lossless ? 7 : 1});
    raw.shorts(tagPhotometric, {32803});
    raw.shorts(tagSamplesPerPixel, {1});
    raw.longs(tagRowsPerStrip, {height});
    raw.shorts(tagPlanarConfiguration, {1});
    raw.shorts(tagCFARepeatPatternDim, {2, 2});
    raw.bytes(tagCFAPattern, {0, 1, 1, 2});
    raw.bytes(tagCFAPlaneColor, {0, 1, 2});
    raw.shorts(tagCFALayout, {1});
    raw.shorts(tagBlackLevel, {blackLevel});
    raw.shorts(tagWhiteLevel, {whiteLevel});
    raw.longs(tagDefaultCropOrigin, {0, 0});
    raw.longs(tagDefaultCropSize, {width, height});
    raw.data(tagStripOffsets, tagStripByteCounts,
             lossless ? encodeLosslessJPEG(mosaic, picture.width, picture.height, 14)
             : packed ? packed14(mosaic, picture.width)
                      : littleEndian(mosaic));
    return raw;
}

} // namespace

std::string encodeDNG(const Picture& upright, const Shot& shot, const DNGOptions& options) {
    Picture stored = storedWith(upright, shot.orientation);
    if (stored.width % 2 != 0 || stored.height % 2 != 0)
        stored = cropped(stored, 0, 0, stored.width & ~1, stored.height & ~1);

    TiffDirectory first;
    addPreview(first, scaledTo(stored, 256), 80);
    describe(first, shot, stored.width, stored.height);
    first.bytes(tagDNGVersion, {1, 4, 0, 0});
    first.bytes(tagDNGBackwardVersion, {1, 1, 0, 0});
    first.text(tagUniqueCameraModel, shot.make + " " + shot.model);
    first.signedRationals(tagColorMatrix1, colourMatrix());
    first.shorts(tagCalibrationIlluminant1, {21}); // D65
    first.rationals(tagAsShotNeutral, {{48, 100}, {100, 100}, {62, 100}});

    std::vector<TiffDirectory> children;
    const int longest = std::max(stored.width, stored.height);
    if (longest > 1616) addPreview(children.emplace_back(), scaledTo(stored, 1616), options.previewQuality);
    if (longest > 256) addPreview(children.emplace_back(), stored, options.previewQuality);
    children.push_back(rawDirectory(stored, options.storage));
    first.directories(tagSubDirectories, std::move(children));
    return TiffDirectory::file(first);
}

} // namespace kelvara::samplecard
