#pragma once

#include <QWidget>

namespace kelvara {

/// The end of the sidebar: another folder, the version, and the way to the support window.
class SidebarFooter : public QWidget {
    Q_OBJECT

public:
    explicit SidebarFooter(QWidget* parent = nullptr);

signals:
    void folderRequested();
    void supportRequested();
};

} // namespace kelvara
