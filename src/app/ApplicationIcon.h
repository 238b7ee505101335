#pragma once

#include <QIcon>

namespace kelvara {

/// The application's icon, sharp at the sizes that desktops show.
[[nodiscard]] QIcon applicationIcon();

} // namespace kelvara
