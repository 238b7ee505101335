#pragma once

#include "platform/FolderChooser.h"

#include <QPointer>

class QFileDialog;
class QWidget;

namespace kelvara {

/// The desktop's own folder dialog; Qt's where a check box has to be in it. One at a time: a request while a
/// dialog is open answers that one with nothing.
class FolderChooserDialog : public FolderChooser {
public:
    ~FolderChooserDialog() override;

    /// The window that dialogs belong to.
    void setWindow(QWidget* window) { m_window = window; }
    void choose(const Request& request, std::function<void(std::optional<Choice>)> onEnd) override;

private:
    QPointer<QWidget> m_window;
    QPointer<QFileDialog> m_dialog;
};

} // namespace kelvara
