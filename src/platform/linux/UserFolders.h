#pragma once

#include "model/FileURL.h"

namespace kelvara {

/// Where programs keep what is the user's: "$XDG_DATA_HOME"; empty for a user without a home.
[[nodiscard]] FileURL userDataFolder();

} // namespace kelvara
