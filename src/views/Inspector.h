#pragma once

#include "library/LibraryViewModel.h"
#include "views/Controls.h"

#include <array>

class QStackedLayout;

namespace kelvara {

/// The panel at the right of the photos, with a tab each for information, adjustments and presets.
class Inspector : public Panel {
    Q_OBJECT

public:
    /// What the tabs show, owned by the panel from now on; where there is nothing, it says so.
    struct Contents {
        QWidget* info = nullptr;
        QWidget* edit = nullptr;
        QWidget* presets = nullptr;
    };

    Inspector(LibraryViewModel& library, const Contents& contents, QWidget* parent = nullptr);

private:
    [[nodiscard]] QWidget* makeTabs();
    void refresh();

    LibraryViewModel& m_library;
    std::array<QToolButton*, 3> m_tabs{};
    QStackedLayout* m_pages;
    Subscription m_subscription;
};

/// Three buttons for the toolbar that show and hide the inspector on one of its tabs.
class InspectorToggles : public QWidget {
    Q_OBJECT

public:
    explicit InspectorToggles(LibraryViewModel& library, QWidget* parent = nullptr);

private:
    void refresh();

    LibraryViewModel& m_library;
    std::array<QToolButton*, 3> m_buttons{};
    Subscription m_subscription;
};

} // namespace kelvara
