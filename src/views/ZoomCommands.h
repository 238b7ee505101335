#pragma once

#include "views/CommandMenu.h"

namespace kelvara {

/// The zoom commands, as part of the "View" menu.
class ZoomCommands {
public:
    static void addTo(CommandMenu& menu) {
        using Kind = WindowCommand::Kind;
        menu.add({{Kind::zoomIn}, {Kind::zoomOut}, {Kind::zoomToFit}, {Kind::toggleZoom}});
    }
};

} // namespace kelvara
