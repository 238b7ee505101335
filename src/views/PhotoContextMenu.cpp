#include "views/PhotoContextMenu.h"

#include "library/LibraryViewModel.h"
#include "views/RatingCommands.h"
#include "views/ShareMenuItems.h"
#include "views/Text.h"

namespace kelvara {

PhotoContextMenu::PhotoContextMenu(const LibraryViewModel& library, const EditHistory& edits,
                                   const ShareMenuItems& sharing, QWidget* window)
    : CommandMenu{{}, window} {
    using Kind = WindowCommand::Kind;
    add({{Kind::toggleMark}});
    RatingCommands::addTo(*this);
    addSeparator();
    sharing.addTo(*this);
    addSeparator();
    add({{Kind::showInFileManager}, {Kind::deletePhotos}});

    const auto* focused = library.focusedItem();
    const auto targets = focused ? library.actionTargets(*focused).size() : 0;
    refresh([&](const WindowCommand& command) {
        auto state = commandState(command, library, edits, *window);
        if (command.kind == Kind::deletePhotos && targets > 1)
            state.title = tr("Delete %1 Files…").arg(countText(static_cast<std::int64_t>(targets)));
        return state;
    });
}

} // namespace kelvara
