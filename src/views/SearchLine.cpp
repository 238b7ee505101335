#include "views/SearchLine.h"

#include "views/Symbols.h"

#include <QAction>

namespace kelvara {

SearchLine::SearchLine(const QString& placeholder, QWidget* parent) : QLineEdit{parent} {
    setPlaceholderText(placeholder);
    setAccessibleName(placeholder);
    setFont(kelvara::font(TextRole::body));
    addAction(symbolIcon(u"magnifyingglass", &Theme::secondaryText), QLineEdit::LeadingPosition);
    m_clear = addAction(symbolIcon(u"xmark.circle.fill", &Theme::secondaryText), QLineEdit::TrailingPosition);
    m_clear->setText(tr("Clear search"));
    m_clear->setToolTip(tr("Clear search"));
    m_clear->setVisible(false);
    connect(m_clear, &QAction::triggered, this, [this] {
        clear();
        emit searched({});
    });
    connect(this, &QLineEdit::textEdited, this, &SearchLine::searched);
    connect(this, &QLineEdit::textChanged, this, [this] { m_clear->setVisible(!text().isEmpty()); });
}

void SearchLine::showText(const QString& wanted) {
    if (wanted != text()) setText(wanted);
}

} // namespace kelvara
