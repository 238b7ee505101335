#include "imaging/codecs/JpegSource.h"

#include "imaging/codecs/ExifBlock.h"
#include "imaging/codecs/JpegDecoder.h"

#include <utility>

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
        const auto header = readJpegHeader(m_exif.thumbnail);
        if (!header) return nullptr;
        // Thumbnails carry no profile of their own as a rule, and are in the colours of their picture.
        auto profile = ColorProfile::fromIcc(header->icc);
        if (!profile) profile = m_profile;
        return decodeJpeg(m_exif.thumbnail, {maximum, m_exif.orientation, std::move(profile)}, stop);
    }

    [[nodiscard]] BitmapPtr image(std::optional<int> maximum, const std::stop_token& stop) override {
        return decodeJpeg(m_bytes, {maximum, m_exif.orientation, m_profile}, stop);
    }

private:
    ByteRange m_bytes;
    PixelSize m_size;
    ExifBlock m_exif;
    ColorProfilePtr m_profile;
};

} // namespace

std::unique_ptr<ImageSource> openJpeg(ByteRange bytes) {
    auto header = readJpegHeader(bytes);
    if (!header) return nullptr;
    return std::make_unique<JpegSource>(std::move(bytes), std::move(*header));
}

} // namespace kelvara
