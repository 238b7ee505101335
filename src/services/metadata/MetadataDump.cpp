#include "services/metadata/MetadataDump.h"

#include "imaging/metadata/LoadedMetadata.h"
#include "model/ExifInfo.h"
#include "services/metadata/ExifReader.h"
#include "services/metadata/MetadataValues.h"

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>
#include <unordered_map>

namespace kelvara {
namespace {

/// No camera writes more; a forged file could name tens of thousands.
constexpr std::size_t mostRows = 4000;

/// Sections by title, in the order in which their first rows came.
class Sections {
public:
    void add(const std::string& title, std::string_view key, std::string value) {
        if (value.empty() || m_rows++ >= mostRows) return;
        const auto [place, isNew] = m_places.try_emplace(title, m_sections.size());
        if (isNew) m_sections.push_back({.title = title, .rows = {}});
        m_sections[place->second].rows.push_back({humanize(key), std::move(value)});
    }
    [[nodiscard]] std::vector<MetadataSection> take() {
        sortForReading(m_sections);
        return std::move(m_sections);
    }

private:
    std::vector<MetadataSection> m_sections;
    std::unordered_map<std::string, std::size_t> m_places;
    std::size_t m_rows = 0;
};

/// The library has a group for each table of a maker's notes: "CanonCs", "NikonLd3".
std::string makerOf(const std::string& group) {
    constexpr std::array<std::string_view, 11> makers{"Canon",   "Casio",   "Fujifilm",  "Minolta",
                                                      "Nikon",   "Olympus", "Panasonic", "Pentax",
                                                      "Samsung", "Sigma",   "Sony"};
    const auto found =
        std::ranges::find_if(makers, [&group](auto maker) { return group.starts_with(maker); });
    return found == makers.end() ? group : std::string{*found};
}

std::string titleOf(const std::string& group) {
    if (group == "Photo" || group == "Iop") return "Exif";
    if (group == "Image") return "TIFF";
    if (group == "GPSInfo") return "GPS";
    return Exiv2::ExifTags::isMakerGroup(group) ? makerOf(group) : group;
}

/// Tags that only say where other things lie in the file.
bool isStructure(const std::string& group, const std::string& tag) {
    constexpr std::array<std::string_view, 10> tags{"ExifTag",
                                                    "GPSTag",
                                                    "InteroperabilityTag",
                                                    "SubIFDs",
                                                    "StripOffsets",
                                                    "StripByteCounts",
                                                    "TileOffsets",
                                                    "TileByteCounts",
                                                    "JPEGInterchangeFormat",
                                                    "JPEGInterchangeFormatLength"};
    return group == "MakerNote" || std::ranges::find(tags, tag) != tags.end();
}

/// Degrees from degrees, minutes and seconds.
std::optional<double> sexagesimal(const Exiv2::Value& value) {
    double sum = 0, unit = 1;
    const auto parts = MetadataValues::numbers(value, 3);
    for (const auto& part : parts) {
        if (!part) return std::nullopt;
        sum += *part * unit;
        unit /= 60;
    }
    return parts.empty() ? std::nullopt : std::optional{sum};
}

std::string describeTag(const Exiv2::Exifdatum& datum, const Exiv2::ExifData& exif) {
    const auto& value = datum.value();
    const auto tag = datum.tagName();
    if (datum.groupName() == "GPSInfo" && (tag.ends_with("Latitude") || tag.ends_with("Longitude"))) {
        const auto degrees = sexagesimal(value);
        return degrees ? decimalText(*degrees, 6) : std::string{};
    }
    // Titles, authors and keywords as Windows adds them, in UTF-16.
    constexpr long mostUTF16 = 4000;
    if (datum.groupName() == "Image" && tag.starts_with("XP") && datum.size() <= mostUTF16)
        return MetadataValues::trimmed(datum.print(&exif));
    // A maker's numbers mean nothing to people until they are looked up.
    if (Exiv2::ExifTags::isMakerGroup(datum.groupName()) && datum.size() <= 256) {
        auto text = MetadataValues::trimmed(datum.print(&exif));
        const bool isText = std::ranges::none_of(text, [](unsigned char c) { return c < 0x20; });
        if (!text.empty() && text.size() < 256 && isText) return text;
    }
    return MetadataValues::describe(value);
}

void addExif(const Exiv2::ExifData& exif, Sections& to, const std::stop_token& stop) {
    for (const auto& datum : exif) {
        if (stop.stop_requested()) return;
        const auto group = datum.groupName();
        const auto tag = datum.tagName();
        if (datum.count() == 0 || isStructure(group, tag)) continue;
        try {
            to.add(titleOf(group), tag, describeTag(datum, exif));
        } catch (const std::exception&) {
            // A value that its own tag can't make sense of.
        }
    }
}

void addIptc(const Exiv2::IptcData& iptc, Sections& to) {
    // Tags that may stand several times make one list.
    std::vector<std::pair<std::string, std::string>> values;
    for (const auto& datum : iptc) {
        const auto tag = datum.tagName();
        auto text = MetadataValues::describe(datum.value());
        if (text.empty()) continue;
        const auto known = std::ranges::find(values, tag, &std::pair<std::string, std::string>::first);
        if (known == values.end()) {
            if (values.size() < mostRows) values.emplace_back(tag, std::move(text));
        } else if (known->second.size() < 2000) {
            known->second += ", " + text;
        }
    }
    for (auto& [tag, text] : values) to.add("IPTC", tag, std::move(text));
}

void addXmp(const Exiv2::XmpData& xmp, Sections& to) {
    for (const auto& datum : xmp) {
        // Structures are followed by their parts.
        const auto& value = datum.value();
        if (value.count() == 0 && value.typeId() != Exiv2::langAlt) continue;
        const bool isAuxiliary = datum.groupName() == "aux";
        to.add(isAuxiliary ? "ExifAux" : "XMP", datum.tagName(), MetadataValues::describe(value));
    }
}

void addImage(const LoadedMetadata& metadata, Sections& to) {
    if (metadata.pixelSize) {
        to.add("Image", "PixelWidth", std::to_string(metadata.pixelSize->width));
        to.add("Image", "PixelHeight", std::to_string(metadata.pixelSize->height));
    }
    if (metadata.orientation) to.add("Image", "Orientation", std::to_string(metadata.orientation->exif()));
}

} // namespace

std::vector<MetadataSection> dumpMetadata(const FileURL& url, const std::stop_token& stop) {
    Sections sections;
    try {
        const auto metadata = LoadedMetadata::of(url, stop);
        addExif(metadata.exif, sections, stop);
        sections.add("ExifAux", "LensModel", auxiliaryLens(metadata.exif, metadata.xmp));
        addIptc(metadata.iptc, sections);
        addXmp(metadata.xmp, sections);
        addImage(metadata, sections);
    } catch (const std::exception&) {
        // What was read so far.
    }
    return sections.take();
}

} // namespace kelvara
