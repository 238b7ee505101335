#include "imaging/DecodingTest.h"
#include "imaging/PngMaker.h"

#include "samplecard/DNG.h"
#include "samplecard/HEIC.h"
#include "samplecard/JPEG.h"
#include "samplecard/MP4.h"
#include "samplecard/Scene.h"

#include <algorithm>
#include <random>
#include <sys/resource.h>

namespace kelvara {
namespace {

/// A field of a file's header that tells a side of the picture.
struct SideField {
    std::string
        before; ///< The bytes that stand `distance` before the field's start, wherever they are found.
    std::size_t distance;
    std::size_t width;
    bool isBigEndian;
};

struct Format {
    std::string file;
    std::string bytes;
    std::vector<SideField> sides;
};

std::string tag(unsigned number, char type) {
    return {static_cast<char>(number & 0xFF), static_cast<char>(number >> 8), type, 0, 1, 0, 0, 0};
}

std::vector<Format> makeFormats() {
    namespace card = samplecard;
    const auto scene = card::paint(card::Scene::lake, 288, 192, 1);
    card::Shot shot;
    shot.orientation = 6;
    card::JPEGOptions progressive;
    progressive.progressive = true;
    card::MP4Options film{.width = 96, .height = 64, .seconds = 0.5};
    const std::vector<SideField> jpegSides{{std::string{"\xFF\xC0", 2}, 5, 2, true},
                                           {std::string{"\xFF\xC0", 2}, 7, 2, true},
                                           {std::string{"\xFF\xC2", 2}, 5, 2, true},
                                           {std::string{"\xFF\xC2", 2}, 7, 2, true}};
    auto rawSides = jpegSides; // those of its previews
    for (const char type : {'\3', '\4'})
        for (const unsigned side : {0x0100U, 0x0101U, 0xA002U, 0xA003U})
            rawSides.push_back({tag(side, type), 8, type == '\3' ? std::size_t{2} : 4, false});
    const auto png = makePng({.size = {96, 64}, .depth = 16, .isInterlaced = true});
    return {{"a.png", {png.begin(), png.end()}, {{"IHDR", 4, 4, true}, {"IHDR", 8, 4, true}}},
            {"a.jpg", card::photoJPEG(scene, shot, {}), jpegSides},
            {"b.jpg", card::photoJPEG(scene, shot, progressive), jpegSides},
            {"a.dng", card::encodeDNG(scene, shot, {}), rawSides},
            {"b.dng",
             card::encodeDNG(scene, shot, {.storage = card::DNGOptions::Storage::fourteenBitsPacked}),
             rawSides},
            {"a.heic",
             card::encodeHEIC(scene, shot, {.thumbnailSide = 96}),
             {{"ispe", 8, 4, true}, {"ispe", 12, 4, true}}},
            {"a.mp4",
             card::encodeMP4(scene, film),
             {{"tkhd", 80, 4, true}, {"tkhd", 84, 4, true}, {"avc1", 28, 2, true}, {"avc1", 30, 2, true}}}};
}

const std::vector<Format>& formats() {
    static const auto all = makeFormats();
    return all;
}

/// The most memory that the process has held so far, in megabytes.
long peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

class HostileTest : public testing::Test {
protected:
    /// Nothing, or a picture of at most the size asked for.
    void decode(const std::string& name, const std::string& bytes) {
        const auto url = folder.write(name, bytes);
        for (const auto maximum : {std::optional<int>{}, std::optional{64}}) {
            const auto image = ImageDecoder::decodeOriginal(url, maximum, {});
            if (!image) continue;
            EXPECT_FALSE(image->size().isEmpty());
            EXPECT_LE(image->size().longestSide(), maximum.value_or(1 << 16));
        }
        const auto quick = ImageDecoder::embeddedThumbnail(url, {});
        EXPECT_LE(quick ? quick->size().longestSide() : 0, 512);
    }

    TemporaryFolder folder;
};

TEST_F(HostileTest, truncatedFilesGiveAPartOrNothing) {
    for (const auto& format : formats()) {
        const auto whole = ImageDecoder::decodeOriginal(folder.write(format.file, format.bytes), 64, {});
        ASSERT_TRUE(whole) << format.file;
        EXPECT_EQ(whole->size().longestSide(), 64) << format.file;
        for (std::size_t percent = 0; percent < 100; ++percent)
            decode(format.file, format.bytes.substr(0, format.bytes.size() * percent / 100));
    }
}

TEST_F(HostileTest, changedBytesDoNoHarm) {
    std::mt19937 random{7};
    for (const auto& format : formats()) {
        for (int round = 0; round < 100; ++round) {
            auto bytes = format.bytes;
            // Every other time in the first kilobytes, where the headers are.
            const auto reach = round % 2 == 0 ? bytes.size() : std::min<std::size_t>(bytes.size(), 2048);
            for (int i = 0; i <= round % 8; ++i) bytes[random() % reach] = static_cast<char>(random());
            decode(format.file, bytes);
        }
    }
}

TEST_F(HostileTest, absurdSizesAreNoReasonToAskForMemory) {
    const auto before = peakMemory();
    for (const auto& format : formats()) {
        std::size_t changed = 0;
        for (const std::uint32_t side : {0xFFFFU, 65500U, 0x80000000U, 0xFFFFFFFFU, 0U, 1U}) {
            auto bytes = format.bytes;
            for (const auto& field : format.sides) {
                for (auto at = bytes.find(field.before); at != std::string::npos;
                     at = bytes.find(field.before, at + 1)) {
                    if (at + field.distance + field.width > bytes.size()) break;
                    for (std::size_t i = 0; i < field.width; ++i) {
                        const auto shift = 8 * (field.isBigEndian ? field.width - 1 - i : i);
                        bytes[at + field.distance + i] = static_cast<char>(side >> shift);
                    }
                    ++changed;
                }
            }
            decode(format.file, bytes);
        }
        EXPECT_GT(changed, 0U) << format.file;
        EXPECT_LT(peakMemory() - before, 512) << format.file;
    }
}

} // namespace
} // namespace kelvara
