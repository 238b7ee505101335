#include "views/SearchField.h"

#include "views/Symbols.h"
#include "views/Text.h"

#include <QAction>

namespace kelvara {

SearchField::SearchField(LibraryViewModel& library, QWidget* parent) : QLineEdit{parent}, m_library{library} {
    setPlaceholderText(tr("Search file names"));
    setAccessibleName(tr("Search file names"));
    setToolTip(tr("Search file names (⌘F)"));
    setFont(kelvara::font(TextRole::body));
    addAction(symbolIcon(u"magnifyingglass", &Theme::secondaryText), QLineEdit::LeadingPosition);
    m_clear = addAction(symbolIcon(u"xmark.circle.fill", &Theme::secondaryText), QLineEdit::TrailingPosition);
    m_clear->setText(tr("Clear search"));
    m_clear->setToolTip(tr("Clear search"));
    connect(m_clear, &QAction::triggered, this, [this] { m_library.setSearchText({}); });
    connect(this, &QLineEdit::textEdited, this,
            [this](const QString& text) { m_library.setSearchText(utf8(text)); });

    m_subscription = m_library.observe({LibraryProperty::searchText, LibraryProperty::wantsSearchFocus},
                                       [this](const auto&) { followLibrary(); });
    followLibrary();
}

void SearchField::followLibrary() {
    const auto wanted = kelvara::text(m_library.searchText());
    if (wanted != text()) setText(wanted);
    m_clear->setVisible(!text().isEmpty());
    if (!m_library.wantsSearchFocus()) return;
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
    m_library.didFocusSearch();
}

void SearchField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    m_library.setSearchFocused(true);
}

void SearchField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    m_library.setSearchFocused(false);
}

} // namespace kelvara
