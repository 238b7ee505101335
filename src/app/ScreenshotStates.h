#pragma once

#include "library/LibraryViewModel.h"
#include "views/RootView.h"

#include <QString>

#include <functional>
#include <vector>

namespace kelvara {

class SideWindow;

/// A state of the application that a picture shows.
struct ScreenshotState {
    QString name;
    std::function<void(LibraryViewModel&, RootView&)> enter;
    /// Back to the grid as it was.
    std::function<void(LibraryViewModel&, RootView&)> leave;
};

/// In the order in which they are taken.
[[nodiscard]] std::vector<ScreenshotState> screenshotStates();

/// The window beside the main one that a state has opened; null for none.
[[nodiscard]] SideWindow* visibleSideWindow();

} // namespace kelvara
