#pragma once

#include "text/Localized.h"

#include <chrono>
#include <fmt/format.h>
#include <string>
#include <string_view>

namespace kelvara {

/// How long a menu looks for devices.
inline constexpr std::chrono::milliseconds findingPatience{3000};

/// One sentence for people; what services say about their errors is for their makers.
[[nodiscard]] inline std::string notSentTo(std::string_view device) {
    return fmt::format(fmt::runtime(localized("The files couldn't be sent to {}.")), device);
}

} // namespace kelvara
