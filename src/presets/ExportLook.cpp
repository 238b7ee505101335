#include "presets/ExportLook.h"

#include "presets/EditStore.h"
#include "text/Localized.h"

#include <fmt/format.h>

namespace kelvara {

std::optional<ExportLook> ExportLook::of(const std::optional<DevelopPreset>& preset, const EditStore& edits,
                                         std::span<const PhotoItem> photos) {
    ExportLook look{preset, {}};
    for (const auto& photo : photos) {
        if (const auto adjustments = edits.adjustments(photo.url); !adjustments.isEmpty())
            look.adjustments.emplace(photo.url.stemKey(), adjustments);
    }
    if (!look.preset && look.adjustments.empty()) return std::nullopt;
    return look;
}

std::optional<DevelopPreset> ExportLook::presetFor(const PhotoItem& photo) const {
    const auto found = adjustments.find(photo.url.stemKey());
    return DevelopPreset::combining(preset, found != adjustments.end() ? found->second : LightAdjustments{});
}

std::string ExportLook::title() const {
    if (!preset) return localized("Edits");
    const auto name = preset->titleWithAmount();
    return adjustments.empty() ? name : fmt::format(fmt::runtime(localized("“{}” + Edits")), name);
}

} // namespace kelvara
