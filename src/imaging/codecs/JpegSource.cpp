#include "imaging/codecs/JpegSource.h"

#include "imaging/Letterbox.h"
#include "imaging/PictureScaler.h"
#include "imaging/codecs/ExifBlock.h"
#include "imaging/codecs/JpegDecoder.h"
#include "imaging/codecs/MultiPicture.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kelvara {
namespace {

class JpegSource : public ImageSource {
public:
    JpegSource(ByteRange bytes, JpegHeader header)
        : m_bytes{std::move(bytes)}, m_size{header.size}, m_exif{ExifBlock::read(ByteRange{
                                                              ByteSource::ofMemory(std::move(header.exif))})},
          m_profile{profileOf(header.icc, m_exif.isAdobeRGB)} {}

    [[nodiscard]] std::optional<PixelSize> pixelSize() const override { return m_size; }
    [[nodiscard]] Orientation orientation() const override { return m_exif.orientation; }

    [[nodiscard]] BitmapPtr storedPreview(std::optional<int> maximum, const std::stop_token& stop) override {
        auto candidates = largePreviews();
        if (auto header = readJpegHeader(m_exif.thumbnail))
            candidates.push_back({m_exif.thumbnail, std::move(*header)});
        const Preview* best = nullptr;
        for (const auto& preview : candidates) {
            if (!best || isBetterPreview(preview.header.size, best->header.size, maximum)) best = &preview;
        }
        return best ? decode(*best, maximum, m_exif.orientation, stop) : nullptr;
    }

    [[nodiscard]] BitmapPtr image(std::optional<int> maximum, const std::stop_token& stop) override {
        if (maximum && *maximum < m_size.longestSide()) {
            if (auto preview = previewFor(*maximum, stop)) return preview;
        }
        return decodeJpeg(m_bytes, {maximum, m_exif.orientation, m_profile}, stop);
    }

    [[nodiscard]] BitmapPtr deepImage(std::optional<int> maximum, const std::stop_token& stop) override {
        return decodeJpeg(m_bytes, {maximum, m_exif.orientation, m_profile, true}, stop);
    }

private:
    struct Preview {
        ByteRange jpeg;
        JpegHeader header;
        PixelRectangle picture{}; ///< Without bars.
    };

    [[nodiscard]] std::vector<Preview> largePreviews() const {
        std::vector<Preview> result;
        for (auto& jpeg : multiPicturePreviews(m_bytes)) {
            auto header = readJpegHeader(jpeg);
            if (!header) continue;
            const auto picture = pictureInside(header->size, m_size);
            result.push_back({std::move(jpeg), std::move(*header), picture});
        }
        return result;
    }

    [[nodiscard]] BitmapPtr decode(const Preview& preview, std::optional<int> maximum,
                                   Orientation orientation, const std::stop_token& stop) const {
        // Previews carry no profile of their own as a rule, and are in the colours of their picture.
        auto profile = ColorProfile::fromIcc(preview.header.icc);
        if (!profile) profile = m_profile;
        return decodeJpeg(preview.jpeg, {maximum, orientation, std::move(profile)}, stop);
    }

    [[nodiscard]] BitmapPtr previewFor(int maximum, const std::stop_token& stop) const;
    [[nodiscard]] BitmapPtr withoutBars(const Preview& preview, int maximum,
                                        const std::stop_token& stop) const;

    ByteRange m_bytes;
    PixelSize m_size;
    ExifBlock m_exif;
    ColorProfilePtr m_profile;
};

/// The smallest preview that shows the whole picture at `maximum`; null when none does. EXIF's thumbnail is
/// none of them: programs that change a picture often leave the old one.
BitmapPtr JpegSource::previewFor(int maximum, const std::stop_token& stop) const {
    auto candidates = largePreviews();
    std::erase_if(candidates,
                  [maximum](const Preview& preview) { return preview.picture.size.longestSide() < maximum; });
    const auto smallest = std::ranges::min_element(
        candidates, {}, [](const Preview& preview) { return preview.header.size.pixels(); });
    if (smallest == candidates.end()) return nullptr;
    const auto given = smallest->header.size, picture = smallest->picture.size;
    // Encoders like sides that are multiples of eight: 1616 by 1080 stands for 1616 by 1077.
    const int rounding = std::max(2, given.longestSide() / 400);
    const bool isWhole = given.width - picture.width <= rounding && given.height - picture.height <= rounding;
    return isWhole ? decode(*smallest, maximum, m_exif.orientation, stop)
                   : withoutBars(*smallest, maximum, stop);
}

/// Null when what should be bars is not: then the preview shows another part of the scene.
BitmapPtr JpegSource::withoutBars(const Preview& preview, int maximum, const std::stop_token& stop) const {
    const auto whole = decode(preview, std::nullopt, Orientation{}, stop);
    if (!whole || !hasBlackBars(*whole, preview.picture)) return nullptr;
    return turnedUpright(scaledDown(cut(*whole, preview.picture), maximum), m_exif.orientation, stop);
}

} // namespace

std::unique_ptr<ImageSource> openJpeg(ByteRange bytes) {
    auto header = readJpegHeader(bytes);
    if (!header) return nullptr;
    return std::make_unique<JpegSource>(std::move(bytes), std::move(*header));
}

} // namespace kelvara
