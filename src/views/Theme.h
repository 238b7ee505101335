#pragma once

#include <QColor>
#include <QFont>

namespace kelvara {

/// The colours of the window. Every grey is neutral (red = green = blue), so that nothing around a photo
/// shifts how its tones and colours look.
struct Theme {
    enum class Appearance { dark, light };

    Appearance appearance = Appearance::dark;

    QColor canvas;      ///< Behind the pictures; the calmest and, in the dark, the deepest grey.
    QColor window;      ///< Toolbar, filter bar and status bar.
    QColor panel;       ///< Sidebar, inspector and sheets.
    QColor popover;     ///< Menus and tool tips.
    QColor raised;      ///< Buttons and chips on `window` or `panel`.
    QColor raisedHover; ///< The same under the pointer,
    QColor raisedPress; ///< and pressed.
    QColor field;       ///< Text fields and the track of sliders and scroll bars.
    QColor selection;   ///< The current row of a list, a chosen segment.
    QColor placeholder; ///< A thumbnail that is still to come.
    QColor separator;   ///< Hairlines between areas.
    QColor border;      ///< Hairlines around controls and pop-ups.

    QColor text;
    QColor secondaryText; ///< Readable (4.5:1 and more) but quiet.
    QColor tertiaryText;  ///< Disabled controls and decoration only.

    QColor accent;      ///< Lines, icons and the focus of a photo.
    QColor accentFill;  ///< Areas that carry `onAccent` text.
    QColor accentHover; ///< `accentFill` under the pointer.
    QColor onAccent;
    QColor mark; ///< Photos marked for copying.
    QColor star;
    QColor danger;
    QColor dangerFill;  ///< Buttons that carry `onAccent` text.
    QColor dangerHover; ///< `dangerFill` under the pointer.
    QColor warning;
    QColor focusRing; ///< Keyboard focus of a control.

    QColor overlay;   ///< Behind text that lies on a picture; the same in both appearances.
    QColor onOverlay; ///< Text on `overlay`.
    QColor shadow;

    [[nodiscard]] bool isDark() const { return appearance == Appearance::dark; }

    /// The colours in use. Paint from them each time: they change with the desktop's appearance.
    [[nodiscard]] static const Theme& current();
    /// Main thread. Widgets that are already shown have to be updated; see `applyTheme` in
    /// ApplicationStyle.h.
    static void setCurrent(Appearance appearance);
    [[nodiscard]] static Theme make(Appearance appearance);
};

/// Distances in logical pixels.
namespace spacing {
inline constexpr int hair = 2;
inline constexpr int tiny = 4;
inline constexpr int small = 8;
inline constexpr int medium = 12;
inline constexpr int large = 16;
inline constexpr int huge = 24;
} // namespace spacing

/// Corner radii in logical pixels.
namespace radius {
inline constexpr int thumbnail = 4;
inline constexpr int control = 6;
inline constexpr int popover = 8;
inline constexpr int sheet = 12;
} // namespace radius

enum class TextRole {
    title,    ///< Of an empty state or a sheet.
    headline, ///< Of a group.
    body,
    emphasis, ///< Body text that leads.
    caption,  ///< Status and details.
    detail,   ///< A second line under a caption.
    section,  ///< Small headings over lists.
    badge,    ///< Letters on thumbnails.
};

/// "Inter" where it is installed, else the desktop's font, at sizes that follow the desktop's own.
[[nodiscard]] QFont font(TextRole role);

} // namespace kelvara
