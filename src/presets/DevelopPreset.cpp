#include "presets/DevelopPreset.h"

#include "imaging/codecs/ByteSource.h"
#include "presets/PresetFile.h"
#include "text/Localized.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <fmt/format.h>
#include <random>
#include <set>

namespace kelvara {

namespace {

constexpr std::array<std::string_view, 7> supportedProfiles{
    "Camera Standard", "Embedded",         "Adobe Standard",    "Adobe Color",
    "Adobe Vivid",     "Adobe Monochrome", "Camera Monochrome",
};
constexpr std::array<std::string_view, 7> calibrationKeys{
    "RedHue", "RedSaturation", "GreenHue", "GreenSaturation", "BlueHue", "BlueSaturation", "ShadowTint",
};
/// In the order of the sliders.
constexpr std::array<const char*, LightAdjustments::sliders.size()> lightKeys{
    "Exposure2012", "Contrast2012", "Highlights2012", "Shadows2012", "Whites2012", "Blacks2012",
};

std::vector<std::string> unsupportedGroups(const PresetSettings& settings) {
    std::set<std::string> groups;
    if (const auto found = settings.find("CameraProfile"); found != settings.end()) {
        const auto* profile = std::get_if<std::string>(&found->second);
        const bool isUnsupported =
            profile != nullptr && std::find(supportedProfiles.begin(), supportedProfiles.end(), *profile) ==
                                      supportedProfiles.end();
        if (isUnsupported) groups.insert(fmt::format("Profile ({})", *profile));
    }
    for (const auto key : calibrationKeys) {
        const auto found = settings.find(key);
        const auto* number = found == settings.end() ? nullptr : std::get_if<double>(&found->second);
        if (number != nullptr && *number != 0) groups.insert("Calibration");
    }
    return {groups.begin(), groups.end()};
}

/// "$$$/Some/Key=Text" refers to a table of translations and carries its English text.
std::string_view withoutReference(std::string_view title) {
    const auto equals = title.starts_with("$$$/") ? title.find('=') : std::string_view::npos;
    return equals == std::string_view::npos ? title : title.substr(equals + 1);
}

/// Spreads a difference in any bit over all of them (the end of MurmurHash3).
std::uint64_t mixed(std::uint64_t bits) {
    bits = (bits ^ bits >> 33) * 0xFF51AFD7ED558CCD;
    bits = (bits ^ bits >> 33) * 0xC4CEB9FE1A85EC53;
    return bits ^ bits >> 33;
}

enum class Format { none, lua, xmp };

Format formatOf(std::string_view extension) {
    std::string lowerCased{extension};
    for (auto& c : lowerCased) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (lowerCased == "lrtemplate") return Format::lua;
    return lowerCased == "xmp" ? Format::xmp : Format::none;
}

} // namespace

PresetRevision PresetRevision::make() {
    std::random_device device;
    const auto word = [&] { return std::uint64_t{device()} << 32 | device(); };
    return {word(), word()};
}

PresetRevision PresetRevision::derived(std::span<const double> amounts) const {
    auto derived = *this;
    for (const double amount : amounts) {
        const auto bits = std::bit_cast<std::uint64_t>(amount);
        derived = {mixed(derived.high ^ bits), mixed(derived.low + ~bits)};
    }
    return derived;
}

DevelopPreset DevelopPreset::of(std::string id, std::string title, PresetSettings settings) {
    DevelopPreset preset;
    preset.id = std::move(id);
    preset.title = std::move(title);
    preset.look = PresetLook{settings};
    preset.unsupportedSettings = unsupportedGroups(settings);
    preset.settings = std::move(settings);
    return preset;
}

Result<DevelopPreset, DevelopPreset::LoadError> DevelopPreset::load(const FileURL& url) {
    const auto unreadable = Failure{LoadError{LoadError::Kind::unreadable, std::string{url.name()}}};
    if (formatOf(url.extension()) == Format::none) return unreadable;
    const auto source = ByteSource::ofFile(url);
    if (!source || source->size() > maximumFileSize) return unreadable;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(source->size()));
    if (source->read(0, bytes) != bytes.size()) return unreadable;
    return read({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, url);
}

Result<DevelopPreset, DevelopPreset::LoadError> DevelopPreset::read(std::string_view bytes,
                                                                    const FileURL& url) {
    const auto failure = [&](LoadError::Kind kind) {
        return Failure{LoadError{kind, std::string{url.name()}}};
    };
    const auto format = formatOf(url.extension());
    if (format == Format::none || bytes.size() > maximumFileSize) return failure(LoadError::Kind::unreadable);
    auto file = format == Format::lua ? PresetFile::readLua(bytes) : PresetFile::readXMP(bytes);
    if (!file) return failure(file.error());
    std::string title{withoutReference(file->title ? *file->title : std::string_view{})};
    if (title.empty()) title = url.stem();
    auto preset = of(std::string{url.name()}, std::move(title), std::move(file->settings));
    const auto group = withoutReference(file->group ? *file->group : std::string_view{});
    if (!group.empty()) preset.group = group;
    return preset;
}

RGB DevelopPreset::apply(const RGB& color) const {
    auto result = look.apply(color);
    if (amount < 1) {
        for (std::size_t i = 0; i < result.size(); ++i) {
            result[i] = color[i] + (result[i] - color[i]) * amount;
        }
    }
    return adjustments.isIdentity ? result : adjustments.apply(result);
}

DevelopPreset DevelopPreset::withAmount(double strength) const {
    auto changed = *this;
    changed.amount = strength;
    changed.revision = revision.derived({{strength}});
    return changed;
}

std::optional<DevelopPreset> DevelopPreset::combining(const std::optional<DevelopPreset>& preset,
                                                      const LightAdjustments& light) {
    if (light.isEmpty()) return preset;
    auto combined = preset.value_or(DevelopPreset{});
    if (!preset) combined.revision = {};
    PresetSettings settings;
    std::vector<double> amounts{combined.amount};
    for (const auto slider : LightAdjustments::sliders) {
        settings.emplace(lightKeys[static_cast<std::size_t>(slider)], light[slider]);
        amounts.push_back(light[slider]);
    }
    combined.adjustments = PresetLook{settings};
    combined.revision = combined.revision.derived(amounts);
    return combined;
}

std::string DevelopPreset::titleWithAmount() const {
    return amount >= 1 ? title : fmt::format("{} {:.0f}%", title, std::round(amount * 100));
}

std::string message(const DevelopPreset::LoadError& error) {
    const bool isUnreadable = error.kind == DevelopPreset::LoadError::Kind::unreadable;
    return fmt::format(fmt::runtime(localized(isUnreadable ? "{} isn't a Lightroom preset this app can read."
                                                           : "{} isn't a Develop preset.")),
                       error.fileName);
}

} // namespace kelvara
