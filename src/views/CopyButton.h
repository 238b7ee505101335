#pragma once

#include "library/LibraryViewModel.h"

#include <QWidget>

class QMenu;
class QToolButton;

namespace kelvara {

class ShareMenuItems;

/// Starts copying the marked photos; the menu beside it says where to and how, and exports them instead.
class CopyButton : public QWidget {
    Q_OBJECT

public:
    /// Both outlive it.
    CopyButton(LibraryViewModel& library, const ShareMenuItems& sharing, QWidget* parent = nullptr);

private:
    void refresh();
    void fillMenu();

    LibraryViewModel& m_library;
    const ShareMenuItems& m_sharing;
    QToolButton* m_action;
    QToolButton* m_menuButton;
    QMenu* m_menu;
    Subscription m_subscription;
};

} // namespace kelvara
