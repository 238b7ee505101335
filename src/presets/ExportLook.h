#pragma once

#include "model/LightAdjustments.h"
#include "model/PhotoItem.h"
#include "presets/DevelopPreset.h"

#include <optional>
#include <span>
#include <string>
#include <unordered_map>

namespace kelvara {

class EditStore;

/// What is drawn on photos that are exported or shared: a preset, and each photo's own edits. A value; any
/// thread.
struct ExportLook {
    std::optional<DevelopPreset> preset;                       ///< With its strength.
    std::unordered_map<FileURL, LightAdjustments> adjustments; ///< By stem key; no empty ones.

    /// Of these photos as they are now; empty where it would change none of them. Main thread.
    [[nodiscard]] static std::optional<ExportLook>
    of(const std::optional<DevelopPreset>& preset, const EditStore& edits, std::span<const PhotoItem> photos);

    /// What one photo is drawn with; empty for as it is.
    [[nodiscard]] std::optional<DevelopPreset> presetFor(const PhotoItem& photo) const;
    /// "Warm 65%", "“Warm 65%” + Edits" or "Edits".
    [[nodiscard]] std::string title() const;
};

} // namespace kelvara
