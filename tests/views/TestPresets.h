#pragma once

#include "library/LibraryFixture.h"
#include "presets/PresetStore.h"
#include "presets/PresetTestFiles.h"
#include "support/FakeFolderWatch.h"
#include "support/FakeTrash.h"

namespace kelvara {

/// A preset store on a folder of the test's own, beside a library.
class TestPresets {
public:
    explicit TestPresets(const LibraryServices& services)
        : store{{.files = services.files,
                 .trash = trash,
                 .watch = watch,
                 .desktop = services.desktop,
                 .preferences = services.preferences,
                 .background = services.background,
                 .main = services.main,
                 .folder = folder / "Presets",
                 .collationLocale = {}}} {}

    /// A preset of the user's, known once the folder has been read again.
    FileURL put(const std::string& name, double exposure = 1) const {
        return folder.write("Presets/" + name + ".xmp", xmpPreset(name, exposure, "Mine"));
    }

    TemporaryFolder folder;
    FakeTrash trash;
    FakeFolderWatch watch;
    PresetStore store;
};

} // namespace kelvara
