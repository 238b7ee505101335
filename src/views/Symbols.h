#pragma once

#include "views/Theme.h"

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QStringList>
#include <QStringView>

namespace kelvara {

/// The application's own icon set, drawn on a grid of 24 units with round strokes of 1.75; the names are the
/// files' in symbols/. Main thread.

/// A symbol in one colour, `points` logical pixels wide and high, sharp at `devicePixelRatio`. Cached.
/// Empty for an unknown name.
[[nodiscard]] QPixmap symbol(QStringView name, int points, const QColor& color, qreal devicePixelRatio);

/// The same as an icon that looks right on every screen, paler when disabled.
[[nodiscard]] QIcon symbolIcon(QStringView name, const QColor& color);

/// An icon in a colour of the theme, `onColor` while checked; it follows a change of the theme.
[[nodiscard]] QIcon symbolIcon(QStringView name, QColor Theme::*color, QColor Theme::*onColor = nullptr);

/// An icon of a menu's entry: in the colour of its text, also while the entry is chosen.
[[nodiscard]] QIcon menuIcon(QStringView name);

/// Every name there is, in alphabetical order.
[[nodiscard]] QStringList symbolNames();

} // namespace kelvara
