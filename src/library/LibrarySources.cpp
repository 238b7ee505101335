// LibraryViewModel: volumes, folders and which of them is the source.

#include "library/LibraryViewModel.h"
#include "library/PreferenceKeys.h"
#include "library/RecentFolders.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/FolderChooser.h"
#include "platform/Preferences.h"
#include "services/VolumeService.h"
#include "text/Localized.h"

#include <algorithm>

namespace kelvara {

void LibraryViewModel::setSourceURL(const FileURL& source) {
    if (source == m_sourceURL) return;
    const Change change{*this};
    assign(Property::sourceURL, m_sourceURL, source);
    assign(Property::searchText, m_searchText, {});
    if (m_deletion) didChange(Property::deletingCount);
    m_sourceRestore.cancel();
    m_copiedItems.clear();
    if (source.isEmpty()) {
        m_services.preferences.remove(PreferenceKeys::lastSource);
    } else {
        m_services.preferences.setText(PreferenceKeys::lastSource, source.path());
    }
    rescan();
}

void LibraryViewModel::selectVolume(const FileURL& id) {
    const auto found = std::find_if(m_volumes.begin(), m_volumes.end(),
                                    [&](const VolumeInfo& volume) { return volume.url == id; });
    if (found != m_volumes.end()) setSourceURL(FileURL{found->preferredSourceURL});
}

void LibraryViewModel::chooseFolder() {
    const auto start = m_sourceURL.isEmpty() ? m_services.desktop.mediaFolder() : m_sourceURL;
    m_services.folderChooser.choose(
        {.prompt = localized("Open"), .message = {}, .startFolder = start, .checkBox = {}},
        [this, alive = std::weak_ptr{m_lifetime}](const std::optional<FolderChooser::Choice>& choice) {
            if (!choice || alive.expired()) return;
            const Change change{*this};
            setSourceURL(choice->folder.standardized());
            addRecentFolder(choice->folder);
        });
}

void LibraryViewModel::openRecentFolder(const FileURL& folder) {
    const Change change{*this};
    setSourceURL(folder.standardized());
    addRecentFolder(folder);
}

void LibraryViewModel::addRecentFolder(const FileURL& folder) {
    m_recentFolders = withRecentFolder(m_recentFolders, folder, m_volumes);
    saveRecentFolders();
}

void LibraryViewModel::removeRecentFolder(const FileURL& folder) {
    std::erase(m_recentFolders, folder.standardized());
    saveRecentFolders();
}

void LibraryViewModel::saveRecentFolders() {
    std::vector<std::string> paths;
    for (const auto& folder : m_recentFolders) paths.push_back(folder.path());
    m_services.preferences.setTexts(PreferenceKeys::recentFolders, paths);
    refreshAvailableRecentFolders();
}

void LibraryViewModel::refreshAvailableRecentFolders() {
    m_recentFoldersCheck.start(
        [&files = m_services.files, folders = m_recentFolders](const std::stop_token&) mutable {
            std::erase_if(folders, [&](const FileURL& folder) { return !files.status(folder); });
            return folders;
        },
        [this](std::vector<FileURL> folders) {
            assign(Property::availableRecentFolders, m_availableRecentFolders, std::move(folders));
        });
}

void LibraryViewModel::refreshVolumes() {
    m_services.volumes.mountedVolumes(
        [this, alive = std::weak_ptr{m_lifetime}](std::vector<VolumeInfo> listed) {
            if (!alive.expired()) applyVolumes(std::move(listed));
        });
}

void LibraryViewModel::applyVolumes(std::vector<VolumeInfo> listed) {
    const Change change{*this};
    assign(Property::volumes, m_volumes, std::move(listed));
    // A card that was opened before it was known to be one.
    const auto removed = std::erase_if(
        m_recentFolders, [this](const FileURL& folder) { return isVolumeFolder(folder, m_volumes); });
    removed > 0 ? saveRecentFolders() : refreshAvailableRecentFolders();
    restoreSource();
}

void LibraryViewModel::restoreSource() {
    // While a disk is ejected its other volumes are still listed; opening one would keep the disk busy.
    if (!m_ejectingVolumeID.isEmpty()) return;
    const bool isFirstTime = !std::exchange(m_hasRestoredSource, true);
    if (!m_sourceURL.isEmpty()) return;
    const auto card = std::find_if(m_volumes.begin(), m_volumes.end(),
                                   [](const VolumeInfo& volume) { return volume.isRemovable; });
    if (card != m_volumes.end()) {
        setSourceURL(FileURL{card->preferredSourceURL});
        return;
    }
    const auto last = m_services.preferences.text(PreferenceKeys::lastSource).value_or("");
    if (!isFirstTime || !last.starts_with('/')) return;
    m_sourceRestore.start([&files = m_services.files, folder = FileURL::standardized(last)](
                              const std::stop_token&) { return files.status(folder) ? folder : FileURL{}; },
                          [this](const FileURL& folder) {
                              if (m_sourceURL.isEmpty()) setSourceURL(folder);
                          });
}

void LibraryViewModel::handleVolumeChange(const VolumeChange& change) {
    const Change together{*this};
    if (change.didUnmount) {
        interruptCopy(change.url);
        stopDeletion(change.url);
        const bool heldSource = !m_sourceURL.isEmpty() && m_sourceURL.isContained(change.url);
        if (heldSource) setSourceURL({});
    }
    refreshVolumes();
}

const VolumeInfo* LibraryViewModel::sourceVolume() const {
    const VolumeInfo* innermost = nullptr;
    for (const auto& volume : m_volumes) {
        const auto holdsSource = !m_sourceURL.isEmpty() && m_sourceURL.isContained(volume.url);
        if (!holdsSource || volume.url.path() == "/") continue; // the system's own stays
        if (!innermost || volume.url.isContained(innermost->url)) innermost = &volume;
    }
    return innermost;
}

void LibraryViewModel::eject(const VolumeInfo& volume) {
    if (refusesEject() || !m_ejectingVolumeID.isEmpty()) return;
    assign(Property::ejectingVolumeID, m_ejectingVolumeID, FileURL{volume.url});
    // Behind the ratings on their way to the disk: one that is being written would keep the volume busy, and
    // those after it would be lost.
    m_services.sidecarWrites.post([this, alive = std::weak_ptr{m_lifetime}, &main = m_services.main, volume] {
        main.post([this, alive, volume] {
            if (!alive.expired()) beginEject(volume);
        });
    });
}

bool LibraryViewModel::refusesEject() {
    if (!isCopying()) return false;
    assign(Property::ejectError, m_ejectError,
           localized("A copy is in progress. Wait for it to finish, or cancel it, before ejecting."));
    return true;
}

void LibraryViewModel::beginEject(const VolumeInfo& volume) {
    const Change change{*this};
    if (refusesEject()) { // it was started meanwhile
        assign(Property::ejectingVolumeID, m_ejectingVolumeID, {});
        return;
    }
    m_services.volumes.eject(volume.url, [this, alive = std::weak_ptr{m_lifetime},
                                          volume](const Result<void, std::string>& result) {
        if (!alive.expired()) didEject(volume, result);
    });
}

void LibraryViewModel::didEject(const VolumeInfo& volume, const Result<void, std::string>& result) {
    const Change change{*this};
    assign(Property::ejectingVolumeID, m_ejectingVolumeID, {});
    if (!result) {
        assign(Property::ejectError, m_ejectError,
               localized("Couldn't eject “") + volume.name + localized("”: ") + result.error());
    } else if (!m_sourceURL.isEmpty() && m_sourceURL.isContained(volume.url)) {
        setSourceURL({});
    }
    refreshVolumes(); // no source was restored meanwhile
}

} // namespace kelvara
