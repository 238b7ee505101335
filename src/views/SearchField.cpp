#include "views/SearchField.h"

#include "views/Text.h"

namespace kelvara {

SearchField::SearchField(LibraryViewModel& library, QWidget* parent)
    : SearchLine{tr("Search file names"), parent}, m_library{library} {
    setToolTip(tr("Search file names (⌘F)"));
    connect(this, &SearchLine::searched, this,
            [this](const QString& text) { m_library.setSearchText(utf8(text)); });

    m_subscription = m_library.observe({LibraryProperty::searchText, LibraryProperty::wantsSearchFocus},
                                       [this](const auto&) { followLibrary(); });
    followLibrary();
}

void SearchField::followLibrary() {
    showText(kelvara::text(m_library.searchText()));
    if (!m_library.wantsSearchFocus()) return;
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
    m_library.didFocusSearch();
}

void SearchField::focusInEvent(QFocusEvent* event) {
    SearchLine::focusInEvent(event);
    m_library.setSearchFocused(true);
}

void SearchField::focusOutEvent(QFocusEvent* event) {
    SearchLine::focusOutEvent(event);
    m_library.setSearchFocused(false);
}

} // namespace kelvara
