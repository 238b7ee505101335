#pragma once

#include "model/FileURL.h"

#include <functional>

namespace kelvara {

/// Tells when something changes in a folder. Main thread, which it never blocks.
class FolderWatch {
public:
    virtual ~FolderWatch() = default;

    /// Watches `folder` and everything below it, in place of what it watched before; links are not followed.
    /// `onChange` is called once watching has begun, so that nothing is missed by who looks then, and some
    /// time after changes, once for many of them. A folder that can't be watched is told of once. No call
    /// arrives after the object is gone.
    virtual void watch(const FileURL& folder, std::function<void()> onChange) = 0;
};

} // namespace kelvara
