#pragma once

#include "model/Observable.h"

#include <QObject>

namespace kelvara {

class LibraryViewModel;
class RootView;
class Sheet;
enum class LibraryProperty;

/// Keeps the window open while a copy runs: asks whether to stop it, and closes the window once it has ended.
class ClosingSheet : public QObject {
    Q_OBJECT

public:
    /// Belongs to `window`; the others outlive it.
    ClosingSheet(LibraryViewModel& library, Sheet& sheet, RootView& window);

    /// Whether the window may close now; asks the user if not.
    [[nodiscard]] bool canClose();
    /// Closes the window without a question, but only after the files in progress have finished.
    void closeSoon();

private:
    void ask();
    void copyMayHaveEnded();

    LibraryViewModel& m_library;
    Sheet& m_sheet;
    RootView& m_window;
    bool m_asks = true;
    bool m_isClosing = false;
    Subscription m_subscription;
};

} // namespace kelvara
