#include "imaging/writing/CarriedMetadata.h"

#include "imaging/codecs/Exiv2Setup.h"
#include "imaging/codecs/TiffTags.h"
#include "imaging/metadata/LoadedMetadata.h"
#include "imaging/writing/ExifDraft.h"
#include "imaging/writing/MakerNote.h"

#include <algorithm>
#include <array>
#include <exception>
#include <optional>
#include <utility>

namespace kelvara {
namespace {

/// Both have to fit into a segment of a JPEG, behind a signature.
constexpr std::size_t mostExifBytes = 65'000, mostXmpBytes = 65'000;
constexpr std::uint16_t undefinedType = 7;
/// Longer values are padding or a maker's data.
constexpr std::size_t mostValueBytes = 4096;

/// What describes the photo and not how it was stored.
bool isCarried(std::uint16_t imageTag) {
    constexpr std::array<std::uint16_t, 15> tags{
        0x010D, 0x010E, 0x010F, 0x0110, 0x011A, 0x011B, 0x0128, // document name to resolution
        0x0131, 0x0132, 0x013B, 0x013C, 0x8298,                 // software, date, artist, computer, copyright
        0x9C9B, 0x9C9D, 0x9C9F,                                 // title, author, subject
    };
    return std::ranges::find(tags, imageTag) != tags.end();
}

/// Some RAW files keep in their first directory what belongs in EXIF's own: exposure, date, lens.
bool belongsToPhoto(std::uint16_t imageTag) {
    return imageTag == 0x829A || imageTag == 0x829D || imageTag == 0x8822 || imageTag == 0x8827 ||
           imageTag == 0x9003 || imageTag == 0x9004 || (imageTag >= 0x9201 && imageTag <= 0x920A);
}

/// What describes the old file: its compression, colours, size, sound and paddings.
bool isOfOldFile(std::uint16_t photoTag) {
    constexpr std::array<std::uint16_t, 11> tags{
        0x9101, 0x9102, TiffTag::makerNote, TiffTag::colorSpace, 0xA002, 0xA003, 0xA004, 0xA005, 0xA500,
        0xEA1C, 0xEA1D};
    return std::ranges::find(tags, photoTag) != tags.end();
}

std::optional<ExifDraft::Value> valueOf(const Exiv2::Exifdatum& datum, bool isBigEndian) {
    const auto size = datum.size();
    if (size <= 0 || static_cast<std::size_t>(size) > mostValueBytes) return std::nullopt;
    const auto type = datum.typeId() == Exiv2::comment ? Exiv2::undefined : datum.typeId();
    if (type < Exiv2::unsignedByte || type > Exiv2::tiffDouble) return std::nullopt;
    ExifDraft::Value value{static_cast<std::uint16_t>(type), static_cast<std::uint32_t>(datum.count()), {}};
    value.bytes.resize(static_cast<std::size_t>(size));
    datum.copy(value.bytes.data(), isBigEndian ? Exiv2::bigEndian : Exiv2::littleEndian);
    return value;
}

void carry(const Exiv2::ExifData& from, bool keepsLocation, ExifDraft& to) {
    for (const auto& datum : from) {
        const auto group = datum.groupName();
        const auto tag = datum.tag();
        const bool isImage = group == "Image", isPhoto = group == "Photo", isGPS = group == "GPSInfo";
        if (!isImage && !isPhoto && !isGPS) continue;
        auto value = valueOf(datum, to.isBigEndian);
        if (!value) continue;
        if (isImage && isCarried(tag))
            to.image.insert_or_assign(tag, std::move(*value));
        else if (isImage && belongsToPhoto(tag))
            to.photo.try_emplace(tag, std::move(*value));
        else if (isPhoto && !isOfOldFile(tag))
            to.photo.insert_or_assign(tag, std::move(*value));
        else if (isGPS && keepsLocation)
            to.gps.insert_or_assign(tag, std::move(*value));
    }
}

/// What holds for the new file, and what every file has to say.
void describe(const Bitmap& image, ExifDraft& draft) {
    constexpr std::uint16_t exifVersion = 0x9000, components = 0x9101, colorPosition = 0x0213;
    constexpr std::uint16_t upright = 1, centered = 1, colorOfSRGB = 1, uncalibrated = 0xFFFF;
    draft.setShort(draft.image, TiffTag::orientation, upright);
    draft.completeResolution(draft.image);
    if (!draft.thumbnail.empty()) { // of a JPEG, which has to name its parts
        draft.setShort(draft.image, colorPosition, centered);
        draft.photo[components] = {undefinedType, 4, {1, 2, 3, 0}};
    }
    draft.photo.try_emplace(exifVersion, ExifDraft::Value{undefinedType, 4, {'0', '2', '3', '1'}});
    draft.setLong(draft.photo, TiffTag::pixelWidth, static_cast<std::uint32_t>(image.width()));
    draft.setLong(draft.photo, TiffTag::pixelHeight, static_cast<std::uint32_t>(image.height()));
    const bool isSRGB = *image.profile() == *ColorProfile::sRGB();
    draft.setShort(draft.photo, TiffTag::colorSpace, isSRGB ? colorOfSRGB : uncalibrated);
}

std::vector<std::uint8_t> exifFrom(const Exiv2::ExifData& source, const Bitmap& image, bool keepsLocation,
                                   std::string thumbnail) {
    ExifDraft draft;
    draft.thumbnail = std::move(thumbnail);
    // What a maker noted may hold the location in ways that nobody has published.
    const auto note = keepsLocation ? MakerNote::of(source) : std::nullopt;
    draft.isBigEndian = note && note->isBigEndian;
    carry(source, keepsLocation, draft);
    describe(image, draft);
    if (note) {
        auto withNote = draft;
        note->addTo(withNote);
        auto bytes = withNote.bytes();
        if (bytes.size() <= mostExifBytes && MakerNote::reads(bytes, source)) return bytes;
    }
    auto bytes = draft.bytes();
    return bytes.size() <= mostExifBytes ? bytes : std::vector<std::uint8_t>{};
}

/// Empty when there is nothing in it.
std::string packetOf(const Exiv2::XmpData& xmp) {
    if (xmp.empty()) return {};
    std::string packet;
    constexpr auto format = Exiv2::XmpParser::useCompactFormat | Exiv2::XmpParser::readOnlyPacket;
    if (Exiv2::XmpParser::encode(packet, xmp, format) != 0) return {};
    return packet;
}

/// Who made the photo and what it shows, in its author's words, and the rating. The star rating that IPTC
/// fields are shown with is this one too: IPTC's own records know none.
std::string xmpFrom(const Exiv2::XmpData& source, std::optional<Rating> rating) {
    Exiv2::XmpData onlyRating;
    if (rating && *rating != Rating{}) onlyRating["Xmp.xmp.Rating"] = std::to_string(rating->rawValue());
    auto xmp = onlyRating;
    for (const auto* key :
         {"Xmp.dc.title", "Xmp.dc.creator", "Xmp.dc.rights", "Xmp.dc.description", "Xmp.dc.subject"}) {
        const auto found = source.findKey(Exiv2::XmpKey{key});
        if (found != source.end()) xmp.add(*found);
    }
    auto packet = packetOf(xmp);
    return packet.size() <= mostXmpBytes ? packet : packetOf(onlyRating);
}

} // namespace

CarriedMetadata CarriedMetadata::of(const ImageWriter::Picture& picture, bool keepsLocation,
                                    std::string thumbnail, const std::stop_token& stop) {
    prepareExiv2();
    CarriedMetadata result;
    const auto source = LoadedMetadata::of(picture.source, stop);
    try {
        result.exif = exifFrom(source.exif, *picture.image, keepsLocation, std::move(thumbnail));
    } catch (const std::exception&) {
        // A file without it is better than none.
    }
    try {
        result.xmp = xmpFrom(source.xmp, picture.rating);
    } catch (const std::exception&) {
        result.xmp.clear();
    }
    return result;
}

} // namespace kelvara
