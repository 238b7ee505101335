#pragma once

#include "model/FileURL.h"

#include <functional>
#include <vector>

class QWidget;

namespace kelvara {

/// Asks with the desktop's dialog for presets to import: several files and archives, or one folder, which are
/// different dialogs. `onChosen` is not called when the user chooses nothing, or `window` goes.
void choosePresetFiles(QWidget& window, std::function<void(std::vector<FileURL>)> onChosen);
void choosePresetFolder(QWidget& window, std::function<void(std::vector<FileURL>)> onChosen);

/// Those of `paths` that are taken for presets wherever they are dropped: preset files and archives.
[[nodiscard]] std::vector<FileURL> presetFilesAmong(const std::vector<FileURL>& paths);
/// Those that are taken for presets where presets are shown: the same, and what may be a folder.
[[nodiscard]] std::vector<FileURL> presetSourcesAmong(const std::vector<FileURL>& paths);

} // namespace kelvara
