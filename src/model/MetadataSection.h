#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvara {

/// Some of a file's metadata under a title, as readable text.
struct MetadataSection {
    struct Row {
        std::string label;
        std::string value;
        friend bool operator==(const Row&, const Row&) = default;
    };

    std::string title;
    std::vector<Row> rows;

    friend bool operator==(const MetadataSection&, const MetadataSection&) = default;
};

/// A tag's name in words: "ExposureTime" reads "Exposure Time", "ISOSpeedRatings" reads "ISO Speed Ratings".
[[nodiscard]] std::string humanize(std::string_view key);

/// Rows by label, and sections in the order in which they matter: Exif, TIFF, ExifAux, GPS, IPTC, then the
/// others as they came.
void sortForReading(std::vector<MetadataSection>& sections);

} // namespace kelvara
