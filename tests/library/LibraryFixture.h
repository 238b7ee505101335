#pragma once

#include "library/LibraryViewModel.h"
#include "platform/linux/LinuxFileSystem.h"
#include "services/CopyService.h"
#include "services/VolumeService.h"
#include "services/XMPService.h"
#include "support/FakeAnalytics.h"
#include "support/FakeDesktop.h"
#include "support/FakeTrash.h"
#include "support/ManualExecutor.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kelvara {

/// A library on a real folder, whose background and main thread run when the test says so.
class LibraryFixture : public testing::Test {
protected:
    LibraryServices services() {
        return {.files = m_files,
                .trash = m_trash,
                .background = m_background,
                .sidecarWrites = m_sidecarWrites,
                .main = m_main,
                .preferences = m_preferences,
                .volumes = m_volumeService,
                .sidecars = m_sidecars,
                .copier = m_copier,
                .folderChooser = m_chooser,
                .desktop = m_desktop,
                .analytics = m_analytics,
                .onShare =
                    [this](std::vector<FileURL> files, const SharePicker::Anchor& anchor,
                           const std::optional<ExportLook>& look) {
                        m_shared.push_back({std::move(files), anchor, look.has_value()});
                    },
                .makeShareFolder = [this] { return m_shareFolder; },
                .emptyImageCaches = [this] { ++m_cacheClearings; },
                .collationLocale = {}};
    }
    LibraryViewModel& start(const FileURL& source = {}) {
        m_library = std::make_unique<LibraryViewModel>(services(), source);
        settle();
        return *m_library;
    }
    void settle() {
        while (m_background.runOne() || m_sidecarWrites.runOne() || m_main.runOne()) {
        }
    }
    [[nodiscard]] static std::vector<std::string> names(const ItemList& list) {
        std::vector<std::string> result;
        for (const auto& item : list) result.emplace_back(item.url.name());
        return result;
    }
    [[nodiscard]] std::vector<std::string> visibleNames() const { return names(m_library->visibleItems()); }
    [[nodiscard]] std::string focusedName() const { return std::string{m_library->focusedID().name()}; }
    [[nodiscard]] VolumeInfo volume(const FileURL& url, bool isRemovable) const {
        return {url, std::string{url.name()}, isRemovable, std::nullopt, std::nullopt, url.child("DCIM")};
    }

    struct Shared {
        std::vector<FileURL> files;
        SharePicker::Anchor anchor;
        bool hasLook;
    };

    TemporaryFolder m_card;
    LinuxFileSystem m_files;
    FakeTrash m_trash;
    ManualExecutor m_background;
    ManualExecutor m_sidecarWrites;
    ManualExecutor m_main;
    MemoryPreferences m_preferences;
    FakeVolumes m_volumes;
    VolumeService m_volumeService{m_volumes};
    XMPService m_sidecars{m_files};
    CopyService m_copier{m_files, [](const FileURL&, Rating) -> Result<void, std::string> { return {}; }};
    FakeFolderChooser m_chooser;
    FakeDesktop m_desktop;
    FakeAnalytics m_analytics;
    std::vector<Shared> m_shared;
    Result<FileURL, FileError> m_shareFolder{m_card / "share"};
    int m_cacheClearings = 0;
    std::unique_ptr<LibraryViewModel> m_library;
};

} // namespace kelvara
