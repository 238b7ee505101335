#pragma once

#include "library/LibraryTypes.h"

#include <QKeySequence>

#include <optional>

class QWidget;

namespace kelvara {

/// What a key asks of the window.
struct WindowCommand {
    enum class Kind {
        moveLeft,
        moveRight,
        moveUp,
        moveDown,
        toggleViewMode,
        goBack, ///< To the grid, out of full screen, or from a control back to the photos.
        focusSearch,
        focusPhotos,
        toggleMark,
        rate, ///< With `stars`.
        copyMarked,
        toggleZoom,
        zoomIn,
        zoomOut,
        zoomToFit,
        toggleInfo,
        toggleEdit,
        togglePresets,
        previousPreset,
        nextPreset,
        toggleOverlays,
        togglePresetBefore, ///< Between the photo as the preset draws it and the photo before.
        openFolder,
        ejectSource,
        undo,
        redo,
        copyEdits,
        pasteEdits,
        clearMarks,
        showInFileManager,
        deletePhotos,
        importPresets,
        toggleFullScreen,
        showAbout,
        showSettings,
        showShortcuts,
        showSupport,
        openMenus, ///< Opens the first menu, for the keyboard to go on from there.
        quit,
    };
    Kind kind = Kind::moveLeft;
    int stars = 0;
    friend bool operator==(const WindowCommand&, const WindowCommand&) = default;

    /// Whether its key works in the windows beside the main one, too.
    [[nodiscard]] bool isForEveryWindow() const {
        return kind == Kind::showSettings || kind == Kind::showShortcuts || kind == Kind::quit;
    }
    /// Whether holding the key down does it again and again.
    [[nodiscard]] bool repeats() const {
        return kind <= Kind::moveDown || kind == Kind::previousPreset || kind == Kind::nextPreset ||
               kind == Kind::zoomIn || kind == Kind::zoomOut;
    }
};

/// Who has the keyboard. A text field keeps every key that types or edits; that of a number keeps
/// Up and Down, too. A button and a list keep Space, Return and the arrows, a slider the arrows.
enum class KeyFocus { photos, textField, numberField, button, list, slider };
[[nodiscard]] KeyFocus keyFocus(const QWidget* focusWidget);

/// The Latin letter, bracket or backslash at the place of a key that types one of another script, so that
/// letters are commands on every keyboard; any other key as it is. `scanCode` is what X11 and Wayland send:
/// the kernel's code plus 8.
[[nodiscard]] int latinKey(int key, unsigned scanCode);

/// The command of a key, if the window takes it. `key` is a Qt::Key.
[[nodiscard]] std::optional<WindowCommand> windowCommand(int key, Qt::KeyboardModifiers modifiers,
                                                         KeyFocus focus, ViewMode mode);

/// The key that a menu shows beside a command; empty for none, and for plain keys such as S.
[[nodiscard]] QKeySequence menuKey(WindowCommand::Kind command);

} // namespace kelvara
