// LibraryViewModel: deleting photos, and the list without them.

#include "library/FileRemoval.h"
#include "library/LibraryViewModel.h"
#include "library/PreferenceKeys.h"
#include "library/Settings.h"
#include "platform/Desktop.h"
#include "platform/Preferences.h"
#include "text/Localized.h"

#include <algorithm>
#include <fmt/format.h>

namespace kelvara {

namespace {

std::string deletionError(const std::vector<FileError>& failures) {
    const auto& first = failures.front();
    const auto others = failures.size() - 1;
    const auto more =
        others == 0 ? std::string{} : fmt::format(fmt::runtime(localized(" (and {} more)")), others);
    return localized("Couldn't delete ") + std::string{first.url.name()} + more + ": " +
           localized(first.code.message());
}

} // namespace

bool LibraryViewModel::deletesPermanently() const {
    if (m_pendingDeletion) return m_pendingIsPermanent;
    const auto isSource = [this](const VolumeInfo& volume) {
        return volume.isRemovable && (m_sourceURL == volume.url || m_sourceURL == volume.preferredSourceURL);
    };
    return std::any_of(m_volumes.begin(), m_volumes.end(), isSource) &&
           Settings{m_services.preferences}.cardDeleteErases();
}

void LibraryViewModel::setDeletesPairedFiles(bool deletes) {
    if (assign(Property::deletesPairedFiles, m_deletesPairedFiles, deletes)) {
        m_services.preferences.setBoolean(PreferenceKeys::deletesPairedFiles, deletes);
    }
}

std::size_t LibraryViewModel::deletingCount() const {
    return m_deletion && m_deletion->source == m_sourceURL ? m_deletion->count : 0;
}

bool LibraryViewModel::willLoseSidecar(const FileURL& id) const {
    return m_deletion && m_deletion->sidecars.contains(id.stemKey());
}

void LibraryViewModel::stopDeletion(const FileURL& volume) {
    if (m_deletion && m_deletion->source.isContained(volume)) m_deletion->stop.request_stop();
}

void LibraryViewModel::requestDeleteForFocused() {
    if (const auto* item = focusedItem()) requestDelete(actionTargets(*item));
}

void LibraryViewModel::requestDelete(std::vector<PhotoItem> items) {
    if (items.empty() || refusesDeletion()) return;
    const bool isPermanent = deletesPermanently();
    m_pendingIsPermanent = isPermanent; // what the sheet asks is what happens
    assign(Property::pendingDeletion, m_pendingDeletion, std::optional{std::move(items)});
}

bool LibraryViewModel::refusesDeletion() {
    if (std::holds_alternative<CopyService::Progress>(m_copyState)) {
        assign(Property::deleteError, m_deleteError,
               localized("A copy is in progress. Wait for it to finish, or cancel it, before deleting."));
        return true;
    }
    if (!isDeleting() && m_ejectingVolumeID.isEmpty()) return false;
    m_services.desktop.beep();
    return true;
}

std::vector<PhotoItem> LibraryViewModel::deletionTargets() const {
    if (!m_pendingDeletion) return {};
    auto targets = *m_pendingDeletion;
    if (!m_deletesPairedFiles) return targets;
    const auto paired = pairedFiles(targets);
    targets.insert(targets.end(), paired.begin(), paired.end());
    return targets;
}

std::optional<std::size_t> LibraryViewModel::notCopiedCount(std::span<const PhotoItem> items) const {
    if (m_copiedItems.empty()) return std::nullopt;
    return static_cast<std::size_t>(std::count_if(
        items.begin(), items.end(), [this](const PhotoItem& item) { return !m_copiedItems.contains(item); }));
}

void LibraryViewModel::noteCopied(const std::vector<PhotoItem>& items) {
    m_copiedItems.insert(items.begin(), items.end());
}

void LibraryViewModel::cancelDeletion() {
    assign(Property::pendingDeletion, m_pendingDeletion, std::optional<std::vector<PhotoItem>>{});
}

void LibraryViewModel::confirmDeletion() {
    if (!m_pendingDeletion) return;
    const Change change{*this};
    const auto targets = deletionTargets();
    const bool permanently = deletesPermanently();
    cancelDeletion();
    runDeletion(targets, permanently);
}

void LibraryViewModel::deleteItems(std::span<const PhotoItem> items) {
    runDeletion(items, deletesPermanently());
}

void LibraryViewModel::runDeletion(std::span<const PhotoItem> items, bool permanently) {
    if (items.empty() || refusesDeletion()) return;
    std::vector<FileURL> targets;
    for (const auto& item : items) targets.push_back(item.url);
    auto sidecars = orphanedSidecars(targets, *m_items);
    m_deletion = Deletion{m_sourceURL, targets.size(), {sidecars.begin(), sidecars.end()}, {}};
    didChange(Property::deletingCount);

    // Behind the ratings on their way to the disk, which would bring back a sidecar; what ejects a volume
    // comes behind the deletion for its part.
    m_services.sidecarWrites.post([this, alive = std::weak_ptr{m_lifetime}, &files = m_services.files,
                                   &trash = m_services.trash, &main = m_services.main,
                                   locale = m_services.collationLocale, stop = m_deletion->stop.get_token(),
                                   before = m_items, targets = std::move(targets),
                                   sidecars = std::move(sidecars), permanently] {
        auto removal = removeFiles(files, trash, targets, sidecars, permanently, stop);
        const auto rest = listingWithout(*before, {removal.removed.begin(), removal.removed.end()}, locale);
        main.post([this, alive, removal = std::move(removal), before, rest] {
            if (!alive.expired()) didDelete(removal, before, rest);
        });
    });
}

LibraryViewModel::Listing LibraryViewModel::listingWithout(const std::vector<PhotoItem>& items,
                                                           const std::unordered_set<FileURL>& removed,
                                                           const std::string& locale) {
    std::vector<PhotoItem> rest;
    rest.reserve(items.size());
    for (const auto& item : items) {
        if (!removed.contains(item.url)) rest.push_back(item);
    }
    auto index = std::make_shared<const LibraryIndex>(rest, locale);
    return {std::make_shared<const std::vector<PhotoItem>>(std::move(rest)), std::move(index)};
}

void LibraryViewModel::didDelete(const FileRemoval& removal, const Items& before, const Listing& rest) {
    const Change change{*this};
    m_deletion.reset();
    didChange(Property::deletingCount);
    const auto isListed = [this](const FileURL& url) { return m_index->find(url, *m_items).has_value(); };
    if (m_items == before) {
        if (!removal.removed.empty()) keepOnly(rest);
    } else if (std::any_of(removal.removed.begin(), removal.removed.end(), isListed)) {
        // Scanned anew meanwhile, which is rare enough for this thread.
        keepOnly(listingWithout(*m_items, {removal.removed.begin(), removal.removed.end()},
                                m_services.collationLocale));
    }
    if (m_isScanning) m_removedDuringScan.insert(removal.removed.begin(), removal.removed.end());
    if (!removal.failures.empty()) {
        assign(Property::deleteError, m_deleteError, deletionError(removal.failures));
    }
}

void LibraryViewModel::keepOnly(const Listing& rest) {
    const Change change{*this};
    const auto isKept = [&](const FileURL& url) { return rest.index->find(url, *rest.items).has_value(); };
    assign(Property::focusedID, m_focusedID, focusAmong(isKept));
    std::vector<FileURL> marked;
    std::copy_if(m_checked.begin(), m_checked.end(), std::back_inserter(marked), isKept);
    if (marked.size() < m_checked.size()) didChange(Property::checkedIDs);
    setItems(rest, marked);
}

FileURL LibraryViewModel::focusAmong(const std::function<bool(const FileURL&)>& isKept) const {
    const auto index = focusedIndex();
    if (!index) return m_focusedID;
    for (auto i = *index; i < m_visibleItems.size(); ++i) {
        if (isKept(m_visibleItems[i].url)) return m_visibleItems[i].url;
    }
    for (auto i = *index; i-- > 0;) {
        if (isKept(m_visibleItems[i].url)) return m_visibleItems[i].url;
    }
    return {};
}

} // namespace kelvara
