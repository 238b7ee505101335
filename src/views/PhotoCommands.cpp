#include "views/PhotoCommands.h"

#include "views/RatingCommands.h"

namespace kelvara {

PhotoCommands::PhotoCommands(QWidget* parent) : CommandMenu{tr("&Photo"), parent} {
    using Kind = WindowCommand::Kind;
    add({{Kind::toggleMark}});
    RatingCommands::addTo(*this);
    addSeparator();
    add({{Kind::copyEdits}, {Kind::pasteEdits}});
    addSeparator();
    add({{Kind::copyMarked}, {Kind::clearMarks}});
    addSeparator();
    add({{Kind::showInFileManager}, {Kind::deletePhotos}});
}

} // namespace kelvara
