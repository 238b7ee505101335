#include "views/PhotoCommands.h"

namespace kelvara {

PhotoCommands::PhotoCommands(QWidget* parent) : CommandMenu{tr("&Photo"), parent} {
    using Kind = WindowCommand::Kind;
    add({{Kind::toggleMark}});
    auto* rating = addSubmenu(tr("Rating"));
    for (int stars = 0; stars <= Rating::maximum; ++stars) rating->add({{Kind::rate, stars}});
    addSeparator();
    add({{Kind::copyEdits}, {Kind::pasteEdits}});
    addSeparator();
    add({{Kind::copyMarked}, {Kind::clearMarks}});
    addSeparator();
    add({{Kind::showInFileManager}, {Kind::deletePhotos}});
}

} // namespace kelvara
