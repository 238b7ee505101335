#pragma once

#include "library/LibraryViewModel.h"
#include "views/SearchLine.h"

namespace kelvara {

/// Filters by file name while one types.
class SearchField : public SearchLine {
    Q_OBJECT

public:
    explicit SearchField(LibraryViewModel& library, QWidget* parent = nullptr);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void followLibrary();

    LibraryViewModel& m_library;
    Subscription m_subscription;
};

} // namespace kelvara
