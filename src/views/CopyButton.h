#pragma once

#include "library/LibraryViewModel.h"

#include <QWidget>

class QMenu;
class QToolButton;

namespace kelvara {

/// Starts copying the marked photos; the menu beside it says where to and how.
class CopyButton : public QWidget {
    Q_OBJECT

public:
    explicit CopyButton(LibraryViewModel& library, QWidget* parent = nullptr);

private:
    void refresh();
    void fillMenu();

    LibraryViewModel& m_library;
    QToolButton* m_action;
    QToolButton* m_menuButton;
    QMenu* m_menu;
    Subscription m_subscription;
};

} // namespace kelvara
