#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace kelvara {

/// How exported files are written. A value; any thread.
struct ExportSettings {
    enum class Format { jpeg, heif, png };
    static constexpr std::array<Format, 3> formats{Format::jpeg, Format::heif, Format::png};
    static constexpr double lowestQuality = 0.5;

    Format format = Format::jpeg;
    double quality = 0.92;       ///< Of JPEG and HEIF, `lowestQuality` to 1.
    bool uses16Bit = false;      ///< More than 8 bits a channel where the format has them.
    std::optional<int> longEdge; ///< Pixels that the longer side has at most; empty for full size.
    bool keepsLocation = true;   ///< Where the photo was taken goes along.
    bool appliesLook = true;     ///< The preset and the edits are drawn.

    /// What a format is called in files and arguments: "jpeg".
    [[nodiscard]] static std::string_view rawValue(Format format);
    /// Empty for a text that names none.
    [[nodiscard]] static std::optional<Format> formatFromRawValue(std::string_view text);
    /// "JPEG".
    [[nodiscard]] static std::string_view displayName(Format format);
    /// Of the files, without a dot: "jpg".
    [[nodiscard]] static std::string_view fileExtension(Format format);

    /// How large an exported file may become, as a multiple of its original.
    [[nodiscard]] double sizeFactor() const;

    [[nodiscard]] std::string json() const;
    /// Empty where anything but `longEdge` is missing or makes no sense.
    [[nodiscard]] static std::optional<ExportSettings> fromJSON(std::string_view text);

    friend bool operator==(const ExportSettings&, const ExportSettings&) = default;
};

} // namespace kelvara
