#pragma once

#include "model/FileURL.h"

#include <functional>
#include <optional>
#include <string>

namespace kelvara {

/// The desktop's dialog for choosing one folder. Main thread; returns at once and answers later, exactly
/// once.
class FolderChooser {
public:
    struct Request {
        std::string prompt;  ///< The confirming button.
        std::string message; ///< What the folder is for; empty for none.
        FileURL startFolder; ///< Where the dialog opens; empty for the desktop's choice.
        bool canCreateFolders = false;
        std::string checkBox;   ///< Text of an additional check box; empty for none.
        bool isChecked = false; ///< The check box's first state.
    };
    struct Choice {
        FileURL folder;
        bool isChecked = false;
    };

    virtual ~FolderChooser() = default;
    /// Answers with nothing when the user cancels.
    virtual void choose(const Request& request, std::function<void(std::optional<Choice>)> onEnd) = 0;
};

} // namespace kelvara
