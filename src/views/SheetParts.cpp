#include "views/SheetParts.h"

#include "views/Controls.h"
#include "views/SelectableText.h"
#include "views/Symbols.h"

#include <QBoxLayout>
#include <QPushButton>

namespace kelvara::SheetParts {

QVBoxLayout* makeColumn(QWidget* owner) {
    owner->setFixedWidth(width); // whatever the names are
    auto* column = new QVBoxLayout{owner};
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    return column;
}

QHBoxLayout* makeHeading(QStringView symbolName, const QColor& color, const QString& title, QWidget* parent) {
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::medium);
    row->addWidget(makeSymbolLabel(symbolName, 28, color, parent));
    auto* label = new ElidedLabel{parent};
    dress(*label, TextRole::title, Tone::normal);
    label->setText(title);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    row->addWidget(label, 1);
    parent->setAccessibleName(title);
    return row;
}

SelectableText* makeParagraph(const QString& text, QWidget* parent) {
    auto* paragraph = new SelectableText{parent}; // breaks paths, which a label cuts
    paragraph->setFont(kelvara::font(TextRole::body));
    paragraph->setAccessibleName(text);
    paragraph->setFixedWidth(width);
    paragraph->showText(text);
    return paragraph;
}

QLabel* makeSymbolLabel(QStringView name, int side, const QColor& color, QWidget* parent) {
    auto* label = new QLabel{parent};
    label->setPixmap(symbol(name, side, color, parent->devicePixelRatioF()));
    return label;
}

QPushButton* makeButton(const QString& title, QWidget* parent) {
    auto* button = new QPushButton{title, parent};
    button->setMinimumWidth(84);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace kelvara::SheetParts
