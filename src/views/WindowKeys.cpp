#include "views/WindowKeys.h"

#include "views/LightValueField.h"
#include "views/PresetListView.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

#include <array>
#include <iterator>
#include <string_view>

namespace kelvara {

namespace {

using Kind = WindowCommand::Kind;
using Command = std::optional<WindowCommand>;

/// A command's key that works wherever the focus is, but for the exceptions below.
struct MenuKey {
    Kind command;
    QKeyCombination keys;
};

/// Of several keys of a command the first is what menus show; the others are what keyboards and desktops have
/// in its place.
constexpr std::array menuKeys{
    MenuKey{Kind::focusSearch, Qt::CTRL | Qt::Key_F},
    MenuKey{Kind::copyMarked, Qt::CTRL | Qt::Key_Return},
    MenuKey{Kind::copyMarked, Qt::CTRL | Qt::Key_Enter},
    MenuKey{Kind::undo, Qt::CTRL | Qt::Key_Z},
    MenuKey{Kind::redo, Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
    MenuKey{Kind::redo, Qt::CTRL | Qt::Key_Y},
    MenuKey{Kind::copyEdits, Qt::CTRL | Qt::SHIFT | Qt::Key_C},
    MenuKey{Kind::pasteEdits, Qt::CTRL | Qt::SHIFT | Qt::Key_V},
    MenuKey{Kind::deletePhotos, Qt::CTRL | Qt::Key_Backspace},
    MenuKey{Kind::deletePhotos, Qt::Key_Delete},
    MenuKey{Kind::openFolder, Qt::CTRL | Qt::Key_O},
    MenuKey{Kind::showSettings, Qt::CTRL | Qt::Key_Comma},
    MenuKey{Kind::showShortcuts, Qt::CTRL | Qt::Key_Slash},
    MenuKey{Kind::showShortcuts, Qt::CTRL | Qt::SHIFT | Qt::Key_Slash}, // where the slash needs Shift
    MenuKey{Kind::quit, Qt::CTRL | Qt::Key_Q},
    MenuKey{Kind::zoomIn, Qt::CTRL | Qt::Key_Equal}, // the plus key without Shift
    MenuKey{Kind::zoomIn, Qt::CTRL | Qt::Key_Plus},
    MenuKey{Kind::zoomIn, Qt::CTRL | Qt::SHIFT | Qt::Key_Equal},
    MenuKey{Kind::zoomIn, Qt::CTRL | Qt::SHIFT | Qt::Key_Plus},
    MenuKey{Kind::zoomOut, Qt::CTRL | Qt::Key_Minus},
    MenuKey{Kind::zoomToFit, Qt::CTRL | Qt::Key_0},
    MenuKey{Kind::zoomToFit, Qt::CTRL | Qt::SHIFT | Qt::Key_0}, // where digits need Shift
    MenuKey{Kind::toggleFullScreen, Qt::Key_F11},
    MenuKey{Kind::openMenus, Qt::Key_F10},
};

/// Keys with which a text field edits its text.
bool editsText(Kind command) {
    return command == Kind::undo || command == Kind::redo || command == Kind::copyEdits ||
           command == Kind::pasteEdits || command == Kind::deletePhotos;
}

bool isForSingleImage(Kind command) {
    return command == Kind::zoomIn || command == Kind::zoomOut || command == Kind::zoomToFit;
}

Command byMenuKey(QKeyCombination keys, KeyFocus focus, ViewMode mode) {
    for (const auto& key : menuKeys) {
        if (key.keys != keys) continue;
        const auto isTyping = focus == KeyFocus::textField || focus == KeyFocus::numberField;
        if (isTyping && editsText(key.command)) return std::nullopt;
        if (mode != ViewMode::loupe && isForSingleImage(key.command)) return std::nullopt;
        return WindowCommand{key.command};
    }
    return std::nullopt;
}

Command inTextField(int key) {
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return WindowCommand{Kind::focusPhotos};
    default:
        return std::nullopt;
    }
}

bool belongsTo(KeyFocus focus, int key) {
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
        return focus != KeyFocus::photos;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return focus == KeyFocus::button || focus == KeyFocus::list;
    default:
        return false;
    }
}

Command plain(int key, ViewMode mode) {
    switch (key) {
    case Qt::Key_Left:
        return WindowCommand{Kind::moveLeft};
    case Qt::Key_Right:
        return WindowCommand{Kind::moveRight};
    case Qt::Key_Up:
        return WindowCommand{Kind::moveUp};
    case Qt::Key_Down:
        return WindowCommand{Kind::moveDown};
    case Qt::Key_Space:
        return WindowCommand{Kind::toggleViewMode};
    case Qt::Key_Escape:
        return WindowCommand{Kind::goBack};
    case Qt::Key_S:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return WindowCommand{Kind::toggleMark};
    case Qt::Key_I:
        return WindowCommand{Kind::toggleInfo};
    case Qt::Key_E:
        return WindowCommand{Kind::toggleEdit};
    case Qt::Key_P:
        return WindowCommand{Kind::togglePresets};
    case Qt::Key_BracketLeft:
        return WindowCommand{Kind::previousPreset};
    case Qt::Key_BracketRight:
        return WindowCommand{Kind::nextPreset};
    default:
        break;
    }
    if (key >= Qt::Key_0 && key <= Qt::Key_5) return WindowCommand{Kind::rate, key - Qt::Key_0};
    if (mode == ViewMode::loupe && key == Qt::Key_Z) return WindowCommand{Kind::toggleZoom};
    if (mode == ViewMode::loupe && key == Qt::Key_H) return WindowCommand{Kind::toggleOverlays};
    if (mode == ViewMode::loupe && key == Qt::Key_Backslash) return WindowCommand{Kind::togglePresetBefore};
    return std::nullopt;
}

} // namespace

KeyFocus keyFocus(const QWidget* focusWidget) {
    if (qobject_cast<const LightValueField*>(focusWidget)) return KeyFocus::numberField;
    // Text to read only is no field: the keys stay with the photos.
    const auto* text = qobject_cast<const QTextEdit*>(focusWidget);
    if (qobject_cast<const QLineEdit*>(focusWidget) || (text && !text->isReadOnly()) ||
        qobject_cast<const QPlainTextEdit*>(focusWidget) ||
        qobject_cast<const QAbstractSpinBox*>(focusWidget) || qobject_cast<const QComboBox*>(focusWidget)) {
        return KeyFocus::textField;
    }
    if (qobject_cast<const QAbstractButton*>(focusWidget)) return KeyFocus::button;
    if (qobject_cast<const PresetListView*>(focusWidget)) return KeyFocus::list;
    if (qobject_cast<const QAbstractSlider*>(focusWidget)) return KeyFocus::slider;
    return KeyFocus::photos;
}

int latinKey(int key, unsigned scanCode) {
    constexpr int lastLatin = 0x24f;
    if (key <= lastLatin || key >= Qt::Key_Escape) return key;
    constexpr std::string_view rows[]{"QWERTYUIOP[]", "ASDFGHJKL", "\\ZXCVBNM"};
    constexpr unsigned firstCodes[]{24, 38, 51};
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const auto place = scanCode - firstCodes[i]; // wraps around below the first
        if (place < rows[i].size()) return rows[i][place];
    }
    return key;
}

Command windowCommand(int key, Qt::KeyboardModifiers modifiers, KeyFocus focus, ViewMode mode) {
    // AltGr only helps to type the character, as the backslash in Germany.
    modifiers &= ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    const QKeyCombination keys{modifiers, static_cast<Qt::Key>(key)};
    if (const auto command = byMenuKey(keys, focus, mode)) return command;
    const auto needsShift = modifiers == Qt::ShiftModifier && key >= Qt::Key_0 && key <= Qt::Key_9;
    if (modifiers != Qt::NoModifier && !needsShift) return std::nullopt;
    if (focus == KeyFocus::textField) return inTextField(key);
    if (belongsTo(focus, key)) return std::nullopt;
    if (focus == KeyFocus::numberField) return inTextField(key);
    return plain(key, mode);
}

QKeySequence menuKey(Kind command) {
    for (const auto& key : menuKeys) {
        if (key.command == command) return QKeySequence{key.keys};
    }
    return {};
}

} // namespace kelvara
