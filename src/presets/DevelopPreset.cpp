#include "presets/DevelopPreset.h"

#include "text/Localized.h"

#include <cmath>
#include <fmt/format.h>
#include <random>

namespace kelvara {

PresetRevision PresetRevision::make() {
    std::random_device device;
    const auto word = [&] { return std::uint64_t{device()} << 32 | device(); };
    return {word(), word()};
}

std::string DevelopPreset::titleWithAmount() const {
    return amount >= 1 ? title : fmt::format("{} {:.0f}%", title, std::round(amount * 100));
}

std::string message(const DevelopPreset::LoadError& error) {
    switch (error.kind) {
    case DevelopPreset::LoadError::Kind::unreadable:
        return fmt::format(fmt::runtime(localized("{} isn't a Lightroom preset this app can read.")),
                           error.fileName);
    case DevelopPreset::LoadError::Kind::notADevelopPreset:
        return fmt::format(fmt::runtime(localized("{} isn't a Develop preset.")), error.fileName);
    }
    return error.fileName;
}

} // namespace kelvara
