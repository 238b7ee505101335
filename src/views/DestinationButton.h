#pragma once

#include "library/LibraryViewModel.h"

#include <QToolButton>

namespace kelvara {

/// The folder that copies and exports go to; a click asks for another.
class DestinationButton : public QToolButton {
    Q_OBJECT

public:
    /// Names longer than `widestName` (logical pixels) are shortened. The library outlives it.
    DestinationButton(LibraryViewModel& library, int widestName, QWidget* parent = nullptr);

private:
    void refresh();

    LibraryViewModel& m_library;
    int m_widestName;
    Subscription m_subscription;
};

} // namespace kelvara
