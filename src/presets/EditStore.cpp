#include "presets/EditStore.h"

#include "text/Localized.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kelvara {

namespace {

/// Whether two hold the same for all photos but those of `others`.
bool agree(const EditFile::Edits& a, const EditFile::Edits& b, const EditFile::Edits& others) {
    const auto contains = [&others](const EditFile::Edits& in, const EditFile::Edits& of) {
        return std::ranges::all_of(of, [&](const auto& edit) {
            if (others.contains(edit.first)) return true;
            const auto same = in.find(edit.first);
            return same != in.end() && same->second == edit.second;
        });
    };
    return contains(a, b) && contains(b, a);
}

} // namespace

/// How a save went.
struct EditStore::Saved {
    Edits changes{};          // what was to be written
    std::uint64_t number = 0; // of the last change among them
    EditsPtr stored{};        // what the file holds now; null where it could not be written
    bool hasOthers = false;   // somebody else has changed it too
    std::string error{};
};

EditStore::EditStore(FileSystem& files, FileURL fileURL, Executor& writer, Executor& main, Alarm alarm)
    : m_files{files}, m_fileURL{std::move(fileURL)}, m_writer{writer}, m_main{main},
      m_alarm{std::move(alarm)}, m_loading{writer, main} {
    m_loading.start(
        [&files, url = m_fileURL](const std::stop_token&) {
            const auto found = EditFile::read(files, url);
            return std::make_shared<const Edits>(found ? *found : Edits{});
        },
        [this](EditsPtr stored) {
            m_stored = std::move(stored);
            didChange(EditProperty::adjustments);
        });
}

EditStore::~EditStore() {
    if (!m_changes.empty()) save();
}

LightAdjustments EditStore::adjustments(const FileURL& photo) const {
    const auto key = photo.stemKey();
    if (const auto changed = m_changes.find(key); changed != m_changes.end()) return changed->second;
    if (!m_stored) return {};
    const auto stored = m_stored->find(key);
    return stored != m_stored->end() ? stored->second : LightAdjustments{};
}

void EditStore::setAdjustments(const LightAdjustments& adjustments, const FileURL& photo) {
    setAdjustments({&adjustments, 1}, {&photo, 1});
}

void EditStore::setAdjustments(std::span<const LightAdjustments> adjustments,
                               std::span<const FileURL> photos) {
    const Change change{*this};
    const auto before = m_changeCount;
    for (std::size_t i = 0; i < photos.size(); ++i) {
        if (m_stored && adjustments[i] == this->adjustments(photos[i])) continue;
        m_changes.insert_or_assign(photos[i].stemKey(), adjustments[i]);
        ++m_changeCount;
    }
    if (m_changeCount == before) return;
    didChange(EditProperty::adjustments);
    scheduleSave();
}

void EditStore::copyAdjustments(const FileURL& photo) {
    assign(EditProperty::copiedAdjustments, m_copied, std::optional{adjustments(photo)});
}

void EditStore::pasteAdjustments(std::span<const FileURL> photos) {
    if (m_copied) setAdjustments(std::vector(photos.size(), *m_copied), photos);
}

std::optional<DevelopPreset> EditStore::exportLook(const std::optional<DevelopPreset>& preset,
                                                   const FileURL& photo) const {
    return DevelopPreset::combining(preset, adjustments(photo));
}

void EditStore::scheduleSave() {
    m_alarm(saveDelay, [weak = std::weak_ptr{m_self}, number = m_changeCount] {
        const auto self = weak.lock();
        if (self && (*self)->m_changeCount == number && !(*self)->m_isSaving) (*self)->save();
    });
}

void EditStore::save() {
    m_isSaving = true;
    m_writer.post([&files = m_files, &main = m_main, url = m_fileURL, weak = std::weak_ptr{m_self},
                   before = m_stored, changes = m_changes, number = m_changeCount] {
        auto found = EditFile::update(files, url, [&](const Edits* there) {
            auto wanted = changes;
            if (!there && before) wanted.insert(before->begin(), before->end()); // the file was lost
            return wanted;
        });
        Saved saved{.changes = changes, .number = number};
        if (found) {
            saved.hasOthers = !before || !agree(*before, *found, changes);
            saved.stored = std::make_shared<const Edits>(std::move(*found));
        } else {
            saved.error = localized("Couldn't save the edits: ") + message(found.error());
        }
        main.post([weak, saved = std::move(saved)] {
            if (const auto self = weak.lock()) (*self)->didSave(saved);
        });
    });
}

void EditStore::didSave(const Saved& saved) {
    const Change change{*this};
    m_isSaving = false;
    assign(EditProperty::saveError, m_saveError, saved.error);
    if (saved.stored) {
        // Forgetting a hundred thousand edits takes a while too.
        m_writer.post([forgotten = std::exchange(m_stored, saved.stored)] {});
        std::erase_if(m_changes, [&](const auto& edit) {
            const auto written = saved.changes.find(edit.first);
            return written != saved.changes.end() && written->second == edit.second;
        });
        if (saved.hasOthers) didChange(EditProperty::adjustments);
    }
    if (m_changeCount != saved.number) scheduleSave(); // changes since then have found it saving
}

} // namespace kelvara
