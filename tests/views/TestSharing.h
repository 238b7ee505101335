#pragma once

#include "library/Settings.h"
#include "library/SharingController.h"
#include "presets/EditHistory.h"
#include "presets/EditStore.h"
#include "support/FakeSharePicker.h"
#include "views/ShareMenuItems.h"
#include "views/TestPresets.h"

namespace kelvara {

/// Presets, edits and sharing beside a library.
class TestSharing {
public:
    explicit TestSharing(const LibraryServices& services)
        : presets{services}, edits{services.files, presets.folder / "Edits.json", services.sidecarWrites,
                                   services.main, [](auto, const auto&) {}},
          settings{services.preferences}, shares{services.files, presets.folder.url()},
          controller{{shares, picker, settings, services.analytics, services.background, services.main}} {}

    [[nodiscard]] ShareMenuItems items(LibraryViewModel& library) {
        return {library, presets.store, edits, controller};
    }

    TestPresets presets;
    EditStore edits;
    EditHistory history{edits};
    Settings settings;
    ShareService shares;
    FakeSharePicker picker;
    SharingController controller;
};

} // namespace kelvara
