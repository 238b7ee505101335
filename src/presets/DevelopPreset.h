#pragma once

#include "model/FileURL.h"
#include "model/Result.h"
#include "presets/PresetLook.h"
#include "presets/PresetValue.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelvara {

/// What rendered pictures are remembered by: no two presets that draw differently share one.
struct PresetRevision {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    /// A fresh random one.
    [[nodiscard]] static PresetRevision make();
    friend auto operator<=>(const PresetRevision&, const PresetRevision&) = default;
};

/// A develop preset as read from its file, and how strongly it is applied. A value; any thread.
struct DevelopPreset {
    /// Why a file gives no preset; the payload is the file's name.
    struct LoadError {
        enum class Kind { unreadable, notADevelopPreset };
        Kind kind = Kind::unreadable;
        std::string fileName;
        friend bool operator==(const LoadError&, const LoadError&) = default;
    };

    std::string id; ///< The file's name with extension, or "builtin/" and a name.
    std::string title;
    std::optional<std::string> summary;
    std::optional<std::string> group; ///< The category that the file names.
    PresetSettings settings;
    PresetLook look;
    std::vector<std::string> unsupportedSettings; ///< Groups that the preview leaves out; sorted.
    PresetRevision revision = PresetRevision::make();
    double amount = 1;      ///< Strength of `look`, 0 to 1.
    PresetLook adjustments; ///< A second look, applied after the first at full strength.

    /// Reads a ".lrtemplate" or ".xmp" file; blocks, so it belongs on a background thread.
    [[nodiscard]] static Result<DevelopPreset, LoadError> load(const FileURL& url);

    /// The title, with the strength in percent where it is not full: "Warm 65%".
    [[nodiscard]] std::string titleWithAmount() const;
};

/// One sentence for people.
[[nodiscard]] std::string message(const DevelopPreset::LoadError& error);

} // namespace kelvara
