#pragma once

#include "model/FileURL.h"
#include "model/Result.h"

#include <functional>
#include <optional>
#include <string>
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

    /// Called once the files were handed over, or with a sentence for people why they could not be; not at
    /// all where the user chose nobody.
    using OnEnd = std::function<void(const Result<void, std::string>&)>;

    virtual ~SharePicker() = default;
    /// Without an anchor it opens at the mouse.
    virtual void share(std::vector<FileURL> files, const std::optional<Anchor>& anchor, OnEnd onEnd) = 0;
    /// Sends the files to a device nearby, asking which where there are several. Calls nothing but
    /// `onUnavailable` where there is none.
    virtual void shareNearby(std::vector<FileURL> files, OnEnd onEnd,
                             std::function<void()> onUnavailable) = 0;
};

} // namespace kelvara
