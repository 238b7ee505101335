#pragma once

#include "model/Result.h"
#include "presets/DevelopPreset.h"
#include "presets/PresetValue.h"

#include <optional>
#include <string>
#include <string_view>

namespace kelvara {

/// What a preset's file says. All numbers in it are finite.
struct PresetFile {
    using Problem = DevelopPreset::LoadError::Kind;

    std::optional<std::string> title;
    std::optional<std::string> group; ///< The category it belongs to.
    PresetSettings settings;

    /// The bytes of a ".lrtemplate": a Lua table in UTF-8.
    [[nodiscard]] static Result<PresetFile, Problem> readLua(std::string_view bytes);
    /// The bytes of an ".xmp": XML with Camera Raw settings. A document type that declares entities or
    /// attributes is refused; nothing is fetched or expanded.
    [[nodiscard]] static Result<PresetFile, Problem> readXMP(std::string_view bytes);
};

} // namespace kelvara
