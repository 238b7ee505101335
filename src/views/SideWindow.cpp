#include "views/SideWindow.h"

#include <QKeyEvent>

namespace kelvara {

SideWindow::SideWindow(const QString& title, QWidget* mainWindow) : QDialog{mainWindow} {
    setWindowTitle(title);
}

void SideWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Close)) {
        close();
        return;
    }
    QDialog::keyPressEvent(event); // which knows Esc
}

} // namespace kelvara
