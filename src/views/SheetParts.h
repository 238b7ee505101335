#pragma once

#include "views/Theme.h"

#include <QStringView>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace kelvara {
class SelectableText;
}

/// What the panels of sheets are made of, so that they all look alike.
namespace kelvara::SheetParts {

inline constexpr int width = 420; // logical pixels

/// The column of a panel; `owner` becomes as wide as every panel is.
[[nodiscard]] QVBoxLayout* makeColumn(QWidget* owner);
/// A heading with a large symbol before it; shortened where it is too long. It also names `parent`.
[[nodiscard]] QHBoxLayout* makeHeading(QStringView symbolName, const QColor& color, const QString& title,
                                       QWidget* parent);
[[nodiscard]] SelectableText* makeParagraph(const QString& text, QWidget* parent);
[[nodiscard]] QLabel* makeSymbolLabel(QStringView name, int side, const QColor& color, QWidget* parent);
[[nodiscard]] QPushButton* makeButton(const QString& title, QWidget* parent);

} // namespace kelvara::SheetParts
