#pragma once

#include "model/FileURL.h"

namespace kelvara {

/// Small services of the desktop around the window. Main thread; none of them waits.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// The system's alert sound.
    virtual void beep() = 0;
    /// Opens the file manager at `url` with the file selected.
    virtual void showInFileManager(const FileURL& url) = 0;
    /// The user's Pictures folder, else their home.
    [[nodiscard]] virtual FileURL picturesFolder() const = 0;
    /// Where removable media are mounted; where a folder chooser opens when there is no better place.
    [[nodiscard]] virtual FileURL mediaFolder() const = 0;
};

} // namespace kelvara
