#pragma once

#include "library/LibraryViewModel.h"
#include "views/Controls.h"

namespace kelvara {

/// The line under the grid: how many files are shown, how many are marked, and the focused photo.
class GridStatusBar : public Panel {
    Q_OBJECT

public:
    explicit GridStatusBar(LibraryViewModel& library, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void refresh();
    void makeRoom();

    LibraryViewModel& m_library;
    QLabel* m_shown;
    QLabel* m_markSymbol;
    QLabel* m_marked;
    QLabel* m_markedBytes;
    ElidedLabel* m_focused;
    Subscription m_subscription;
};

} // namespace kelvara
