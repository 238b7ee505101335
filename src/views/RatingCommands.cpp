#include "views/RatingCommands.h"

#include "model/Rating.h"
#include "views/CommandMenu.h"

#include <QCoreApplication>

namespace kelvara {

void RatingCommands::addTo(CommandMenu& menu) {
    auto* submenu = menu.addSubmenu(QCoreApplication::translate("RatingCommands", "Rating"));
    for (int stars = 0; stars <= Rating::maximum; ++stars) submenu->add({{WindowCommand::Kind::rate, stars}});
}

} // namespace kelvara
