#pragma once

#include "views/Theme.h"

#include <QLabel>
#include <QToolButton>
#include <QWidget>

namespace kelvara {

/// A plain area in a colour of the theme, with hairlines where it meets others.
class Panel : public QWidget {
    Q_OBJECT

public:
    explicit Panel(QColor Theme::*background, QWidget* parent = nullptr);
    /// `edges`: Qt::TopEdge, Qt::BottomEdge.
    void setHairlines(Qt::Edges edges);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor Theme::*m_background;
    Qt::Edges m_edges;
};

/// One line of text that gives way: it shortens itself in the middle and shows all of it as a tool tip.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr, Qt::TextElideMode mode = Qt::ElideMiddle);
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    Qt::TextElideMode m_mode;
};

enum class Tone { normal, quiet };

/// A label that shows `text` as it is, never as markup.
[[nodiscard]] QLabel* makeLabel(TextRole role, Tone tone, QWidget* parent, const QString& text = {});
void dress(QLabel& label, TextRole role, Tone tone);

/// A flat button with a symbol; `name` is what assistive tools say. Like every button of the window it takes
/// the keyboard by Tab alone, so that a click leaves the keys with the photos.
[[nodiscard]] QToolButton* makeIconButton(QStringView symbolName, const QString& name, const QString& help,
                                          QWidget* parent);

/// Gives a button's symbol room to the text beside it: Qt sets them close together.
void setSymbol(QToolButton& button, const QIcon& icon, int side);

/// A pill that filters; filled with the accent colour while it is checked or `setChipActive`.
[[nodiscard]] QToolButton* makeChip(const QString& text, const QString& help, QWidget* parent);
void setChipActive(QToolButton& chip, bool active);

/// Sets a property that the style sheet looks at.
void setStyleProperty(QWidget& widget, const char* name, const QVariant& value);

} // namespace kelvara
