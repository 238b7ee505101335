#include "imaging/codecs/RawSource.h"

#include "imaging/PictureScaler.h"
#include "imaging/codecs/ExifBlock.h"
#include "imaging/codecs/Exiv2Setup.h"
#include "imaging/codecs/JpegDecoder.h"
#include "imaging/codecs/RangeIo.h"
#include "imaging/codecs/RawDeveloper.h"
#include "imaging/codecs/RawLayout.h"

#include <exiv2/exiv2.hpp>

#include <exception>
#include <utility>
#include <vector>

namespace kelvara {
namespace {

/// The preview that serves the request best among those that Exiv2 knows of; for containers that neither the
/// locator nor LibRaw can read. It reads much of the file, so it comes last.
std::vector<std::uint8_t> previewByExiv2(const ByteRange& file, std::optional<int> maximum) {
    try {
        prepareExiv2();
        const auto image = openByExiv2(file);
        if (!image) return {};
        image->readMetadata();
        const Exiv2::PreviewManager manager{*image};
        const auto sizeOf = [](const Exiv2::PreviewProperties& preview) {
            return PixelSize{static_cast<int>(preview.width_), static_cast<int>(preview.height_)};
        };
        const Exiv2::PreviewProperties* best = nullptr;
        const auto all = manager.getPreviewProperties();
        for (const auto& preview : all) {
            if (preview.mimeType_ != "image/jpeg") continue;
            if (!best || isBetterPreview(sizeOf(preview), sizeOf(*best), maximum)) best = &preview;
        }
        if (!best) return {};
        const auto chosen = manager.getPreviewImage(*best);
        return {chosen.pData(), chosen.pData() + chosen.size()};
    } catch (const std::exception&) {
        return {};
    }
}

class RawSource : public ImageSource {
public:
    RawSource(FileURL url, ByteRange bytes, RawLayout layout, std::unique_ptr<RawDeveloper> developer)
        : m_url{std::move(url)}, m_bytes{std::move(bytes)}, m_layout{std::move(layout)},
          m_developer{std::move(developer)} {}

    [[nodiscard]] std::optional<PixelSize> pixelSize() const override { return m_layout.size; }
    [[nodiscard]] bool isSensorData() const override { return true; }
    [[nodiscard]] Orientation orientation() const override {
        return m_layout.orientation.value_or(Orientation{});
    }

    [[nodiscard]] BitmapPtr storedPreview(std::optional<int> maximum, const std::stop_token& stop) override {
        const RawLayout::Preview* best = nullptr;
        for (const auto& preview : m_layout.previews) {
            if (!best || isBetterPreview(preview.size, best->size, maximum)) best = &preview;
        }
        if (best) {
            if (auto bitmap = decode(best->jpeg, best->isAdobeRGB, maximum, stop)) return bitmap;
        }
        return stop.stop_requested() ? nullptr : previewByLibraries(maximum, stop);
    }

    [[nodiscard]] BitmapPtr image(std::optional<int> maximum, const std::stop_token& stop) override {
        return develop(maximum, PixelFormat::bgrx8, stop);
    }

    [[nodiscard]] BitmapPtr deepImage(std::optional<int> maximum, const std::stop_token& stop) override {
        return develop(maximum, PixelFormat::bgrx16, stop);
    }

private:
    BitmapPtr develop(std::optional<int> maximum, PixelFormat format, const std::stop_token& stop) {
        // LibRaw makes black or noise of what isn't there, and calls that a success.
        auto* developer = m_layout.isCut ? nullptr : openDeveloper();
        const auto developed =
            developer ? developer->develop(maximum, format, stop) : RawDeveloper::Development{};
        m_developer.reset(); // develops once
        if (developed.bitmap && !developed.isDamaged)
            return turnedUpright(developed.bitmap, orientation(), stop);
        // Of a damaged file, the camera's own preview shows more than half a development.
        if (auto preview = storedPreview(maximum, stop)) return preview;
        return turnedUpright(developed.bitmap, orientation(), stop);
    }

    RawDeveloper* openDeveloper() {
        if (!m_developer) m_developer = RawDeveloper::open(m_url);
        return m_developer.get();
    }

    BitmapPtr previewByLibraries(std::optional<int> maximum, const std::stop_token& stop) {
        auto* developer = openDeveloper();
        auto preview = developer ? developer->preview() : RawDeveloper::Preview{};
        if (preview.bitmap) {
            if (maximum) preview.bitmap = scaledDown(preview.bitmap, *maximum);
            return turnedUpright(preview.bitmap, orientation(), stop);
        }
        if (preview.jpeg.empty()) preview.jpeg = previewByExiv2(m_bytes, maximum);
        return decode(ByteRange{ByteSource::ofMemory(std::move(preview.jpeg))}, m_layout.isAdobeRGB, maximum,
                      stop);
    }

    BitmapPtr decode(const ByteRange& jpeg, bool isAdobeRGB, std::optional<int> maximum,
                     const std::stop_token& stop) const {
        const auto header = readJpegHeader(jpeg);
        if (!header) return nullptr;
        return decodeJpeg(jpeg, {maximum, orientation(), profileOf(header->icc, isAdobeRGB)}, stop);
    }

    FileURL m_url;
    ByteRange m_bytes;
    RawLayout m_layout;
    std::unique_ptr<RawDeveloper> m_developer; // opened when needed
};

} // namespace

std::unique_ptr<ImageSource> openRaw(const FileURL& url, ByteRange bytes) {
    auto layout = RawLayout::read(bytes);
    std::unique_ptr<RawDeveloper> developer;
    // The library is asked only for what the file's own directories don't tell.
    if (!layout.size || !layout.orientation) developer = RawDeveloper::open(url);
    if (developer) {
        if (!layout.size) layout.size = developer->size();
        if (!layout.orientation) layout.orientation = developer->orientation();
    }
    const bool isUnderstood = layout.size || !layout.previews.empty();
    if (!isUnderstood) {
        // Kept, because finding it reads much of the file.
        auto jpeg = ByteSource::ofMemory(previewByExiv2(bytes, std::nullopt));
        auto preview = RawLayout::Preview::read(ByteRange{std::move(jpeg)});
        if (!preview) return nullptr;
        layout.previews.push_back(std::move(*preview));
    }
    return std::make_unique<RawSource>(url, std::move(bytes), std::move(layout), std::move(developer));
}

} // namespace kelvara
