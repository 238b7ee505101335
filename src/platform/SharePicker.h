#pragma once

#include "model/FileURL.h"

#include <functional>
#include <optional>
#include <vector>

namespace kelvara {

/// Lets the user choose where files are handed to: programs, people and devices. Main thread; none of the
/// calls waits.
class SharePicker {
public:
    /// A rectangle on the screen beside which the picker opens, in the desktop's coordinates.
    struct Anchor {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        friend bool operator==(const Anchor&, const Anchor&) = default;
    };

    virtual ~SharePicker() = default;
    /// Without an anchor it opens at the mouse.
    virtual void share(std::vector<FileURL> files, const std::optional<Anchor>& anchor) = 0;
    /// Sends the files to a device nearby, asking which where there are several. Calls `onUnavailable` where
    /// there is none, and nothing otherwise.
    virtual void shareNearby(std::vector<FileURL> files, std::function<void()> onUnavailable) = 0;
};

} // namespace kelvara
