#include "views/WindowKeys.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace kelvara {

namespace {

using Kind = WindowCommand::Kind;
using Command = std::optional<WindowCommand>;

Command withControl(int key, ViewMode mode) {
    switch (key) {
    case Qt::Key_F:
        return WindowCommand{Kind::focusSearch};
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return WindowCommand{Kind::copyMarked};
    case Qt::Key_O:
        return WindowCommand{Kind::openFolder};
    case Qt::Key_Q:
        return WindowCommand{Kind::quit};
    default:
        break;
    }
    if (mode != ViewMode::loupe) return std::nullopt;
    switch (key) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the plus key without Shift
        return WindowCommand{Kind::zoomIn};
    case Qt::Key_Minus:
        return WindowCommand{Kind::zoomOut};
    case Qt::Key_0:
        return WindowCommand{Kind::zoomToFit};
    default:
        return std::nullopt;
    }
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
        return focus == KeyFocus::button;
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
    default:
        break;
    }
    if (key >= Qt::Key_0 && key <= Qt::Key_5) return WindowCommand{Kind::rate, key - Qt::Key_0};
    if (mode == ViewMode::loupe && key == Qt::Key_Z) return WindowCommand{Kind::toggleZoom};
    if (mode == ViewMode::loupe && key == Qt::Key_H) return WindowCommand{Kind::toggleOverlays};
    return std::nullopt;
}

} // namespace

KeyFocus keyFocus(const QWidget* focusWidget) {
    // Text to read only is no field: the keys stay with the photos.
    const auto* text = qobject_cast<const QTextEdit*>(focusWidget);
    if (qobject_cast<const QLineEdit*>(focusWidget) || (text && !text->isReadOnly()) ||
        qobject_cast<const QPlainTextEdit*>(focusWidget) ||
        qobject_cast<const QAbstractSpinBox*>(focusWidget) || qobject_cast<const QComboBox*>(focusWidget)) {
        return KeyFocus::textField;
    }
    if (qobject_cast<const QAbstractButton*>(focusWidget)) return KeyFocus::button;
    if (qobject_cast<const QAbstractSlider*>(focusWidget)) return KeyFocus::slider;
    return KeyFocus::photos;
}

Command windowCommand(int key, Qt::KeyboardModifiers modifiers, KeyFocus focus, ViewMode mode) {
    modifiers &= ~Qt::KeypadModifier;
    if (key == Qt::Key_F11 && modifiers == Qt::NoModifier) return WindowCommand{Kind::toggleFullScreen};
    if (modifiers == Qt::ControlModifier) return withControl(key, mode);
    // On many keyboards the plus sign needs Shift.
    const auto isPlus = key == Qt::Key_Plus || key == Qt::Key_Equal;
    if (isPlus && modifiers == (Qt::ControlModifier | Qt::ShiftModifier)) return withControl(key, mode);
    if (modifiers != Qt::NoModifier) return std::nullopt;
    if (focus == KeyFocus::textField) return inTextField(key);
    if (belongsTo(focus, key)) return std::nullopt;
    return plain(key, mode);
}

} // namespace kelvara
