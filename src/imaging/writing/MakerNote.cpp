#include "imaging/writing/MakerNote.h"

#include "imaging/codecs/TiffTags.h"

#include <algorithm>
#include <string_view>

namespace kelvara {
namespace {

constexpr std::uint32_t headerSize = 8;
constexpr long mostBytes = 64'000;

std::vector<std::uint8_t> bytesOf(const Exiv2::Exifdatum& datum) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::max(datum.size(), 0L)));
    if (!bytes.empty()) datum.copy(bytes.data(), Exiv2::littleEndian);
    return bytes;
}

/// The values of the note, in the order in which they are read.
std::vector<const Exiv2::Exifdatum*> values(const Exiv2::ExifData& exif) {
    std::vector<const Exiv2::Exifdatum*> result;
    for (const auto& datum : exif) {
        if (Exiv2::ExifTags::isMakerGroup(datum.groupName()) && datum.groupName() != "MakerNote")
            result.push_back(&datum);
    }
    return result;
}

} // namespace

std::optional<MakerNote> MakerNote::of(const Exiv2::ExifData& exif) {
    const auto found = exif.findKey(Exiv2::ExifKey{"Exif.Photo.MakerNote"});
    if (found == exif.end() || found->size() <= 4 || found->size() > mostBytes) return std::nullopt;
    MakerNote note{.bytes = bytesOf(*found)};
    // The library tells of the notes that it can read where they lay. Of one that it can't, this is known to
    // be addressed from its own start.
    constexpr std::string_view selfContained{"Apple iOS\0", 10};
    const auto start = std::string_view{reinterpret_cast<const char*>(note.bytes.data()), note.bytes.size()};
    const auto offset = exif.findKey(Exiv2::ExifKey{"Exif.MakerNote.Offset"});
    const auto order = exif.findKey(Exiv2::ExifKey{"Exif.MakerNote.ByteOrder"});
    if (offset != exif.end() && order != exif.end()) {
        const auto at = offset->toLong();
        if (at < long{headerSize} || at > mostBytes) return std::nullopt;
        note.offset = static_cast<std::uint32_t>(at);
        note.isBigEndian = order->toString() == "MM";
        return note;
    }
    return start.starts_with(selfContained) ? std::optional{std::move(note)} : std::nullopt;
}

void MakerNote::addTo(ExifDraft& draft) const {
    constexpr std::uint16_t undefinedType = 7;
    draft.makerNoteOffset = offset;
    draft.photo[TiffTag::makerNote] = {undefinedType, static_cast<std::uint32_t>(bytes.size()), bytes};
}

bool MakerNote::reads(std::span<const std::uint8_t> block, const Exiv2::ExifData& source) {
    Exiv2::ExifData exif;
    Exiv2::ExifParser::decode(exif, block.data(), static_cast<std::uint32_t>(block.size()));
    return std::ranges::equal(values(source), values(exif), [](const auto* a, const auto* b) {
        return a->key() == b->key() && bytesOf(*a) == bytesOf(*b);
    });
}

} // namespace kelvara
