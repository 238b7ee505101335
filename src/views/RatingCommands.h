#pragma once

namespace kelvara {

class CommandMenu;

/// The submenu "Rating".
class RatingCommands {
public:
    static void addTo(CommandMenu& menu);
};

} // namespace kelvara
