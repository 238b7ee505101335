#pragma once

#include "platform/SharePicker.h"

#include <functional>
#include <string>
#include <vector>

namespace kelvara {

/// Somebody who takes files: a program or a device.
struct ShareTarget {
    std::string id;   ///< Means something to whoever found it.
    std::string name; ///< For people.
    friend bool operator==(const ShareTarget&, const ShareTarget&) = default;
};

/// One way of handing files over, and whom it reaches. Main thread; none of the calls waits, and nothing is
/// called back once it is gone.
class ShareTargets {
public:
    virtual ~ShareTargets() = default;

    /// Answers once, later: with nobody where the service for it is missing or keeps silent.
    virtual void find(std::function<void(std::vector<ShareTarget>)> onFound) = 0;
    virtual void send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) = 0;
};

} // namespace kelvara
