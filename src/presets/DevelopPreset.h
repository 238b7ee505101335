#pragma once

#include "model/FileURL.h"
#include "model/LightAdjustments.h"
#include "model/Result.h"
#include "presets/PresetLook.h"
#include "presets/PresetValue.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvara {

/// What rendered pictures are remembered by: no two presets that draw differently share one.
struct PresetRevision {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    /// A fresh random one.
    [[nodiscard]] static PresetRevision make();
    /// That of the same preset changed by these amounts; the same for the same, so that pictures that were
    /// rendered before are found again.
    [[nodiscard]] PresetRevision derived(std::span<const double> amounts) const;
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

    std::string id; ///< The file's name with extension, or "builtin/" and a name; see PresetStore.
    std::string title;
    std::optional<std::string> summary;
    std::optional<std::string> group; ///< The category that the file names.
    PresetSettings settings;
    PresetLook look;
    std::vector<std::string> unsupportedSettings; ///< Groups that the preview leaves out; sorted.
    PresetRevision revision = PresetRevision::make();
    double amount = 1;      ///< Strength of `look`, 0 to 1.
    PresetLook adjustments; ///< A second look, applied after the first at full strength.

    /// The most bytes that a preset's file may have: many times what masks and curves take.
    static constexpr std::size_t maximumFileSize = 8 * 1024 * 1024;

    /// Reads a ".lrtemplate" or ".xmp" file; blocks, so it belongs on a background thread.
    [[nodiscard]] static Result<DevelopPreset, LoadError> load(const FileURL& url);
    /// What loading gives where the file at `url` holds `bytes`; reads nothing.
    [[nodiscard]] static Result<DevelopPreset, LoadError> read(std::string_view bytes, const FileURL& url);
    /// A preset of these settings, at full strength.
    [[nodiscard]] static DevelopPreset of(std::string id, std::string title, PresetSettings settings);

    /// What the preset makes of a colour: its look at its strength, then the adjustments.
    [[nodiscard]] RGB apply(const RGB& color) const;

    /// The same preset at another strength, 0 to 1. Changing `amount` itself keeps the revision.
    [[nodiscard]] DevelopPreset withAmount(double strength) const;
    /// The preset with a photo's edits as its `adjustments`. Without edits the preset itself; without a
    /// preset one that only draws the edits; without both none.
    [[nodiscard]] static std::optional<DevelopPreset> combining(const std::optional<DevelopPreset>& preset,
                                                                const LightAdjustments& light);

    /// The title, with the strength in percent where it is not full: "Warm 65%".
    [[nodiscard]] std::string titleWithAmount() const;
};

/// One sentence for people.
[[nodiscard]] std::string message(const DevelopPreset::LoadError& error);

} // namespace kelvara
