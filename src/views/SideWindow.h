#pragma once

#include <QDialog>

namespace kelvara {

/// A window beside the main one, which it goes with. Esc closes it, and so does the desktop's key for that.
class SideWindow : public QDialog {
    Q_OBJECT

public:
    SideWindow(const QString& title, QWidget* mainWindow);

signals:
    /// Asks for the support window.
    void supportRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace kelvara
