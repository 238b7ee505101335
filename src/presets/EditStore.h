#pragma once

#include "async/Executor.h"
#include "async/LatestOnly.h"
#include "model/FileURL.h"
#include "model/LightAdjustments.h"
#include "model/Observable.h"
#include "platform/FileSystem.h"
#include "presets/DevelopPreset.h"
#include "presets/EditFile.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace kelvara {

enum class EditProperty { adjustments, copiedAdjustments, saveError, count };

/// The light edits of all photos, kept in one JSON file. They belong to the stem key, so that the files of a
/// shot share them. Main thread.
///
/// The file is read in the background at first; edits made before it is there win. Changes are written once
/// there has been none for half a second, and nothing but them: what another window or program has changed in
/// the file meanwhile stays, and shows here from then on. What can't be written stays in memory and is tried
/// again with the next change and at the end.
class EditStore : public Observable<EditProperty> {
public:
    static constexpr std::chrono::milliseconds saveDelay{500};
    /// Runs a job on the main thread after a time.
    using Alarm = std::function<void(std::chrono::milliseconds, std::function<void()>)>;

    /// `files` and the executors outlive it. `writer` runs one job after the other.
    EditStore(FileSystem& files, FileURL fileURL, Executor& writer, Executor& main, Alarm alarm);
    /// Saves what has not been saved.
    ~EditStore();

    /// Where the edits are kept: "Edits.json".
    [[nodiscard]] const FileURL& fileURL() const { return m_fileURL; }

    /// Empty for a photo without edits.
    [[nodiscard]] LightAdjustments adjustments(const FileURL& photo) const;
    void setAdjustments(const LightAdjustments& adjustments, const FileURL& photo);
    /// The same for many at once, `adjustments[i]` for `photos[i]`.
    void setAdjustments(std::span<const LightAdjustments> adjustments, std::span<const FileURL> photos);

    [[nodiscard]] const std::optional<LightAdjustments>& copiedAdjustments() const { return m_copied; }
    void copyAdjustments(const FileURL& photo);
    /// Gives each photo the edits that were copied, if any were.
    void pasteAdjustments(std::span<const FileURL> photos);

    /// Why the changes could not be written, one sentence; empty once they have been.
    [[nodiscard]] const std::string& saveError() const { return m_saveError; }
    void clearSaveError() { assign(EditProperty::saveError, m_saveError, {}); }

    /// What a photo is drawn with: the chosen preset with the photo's edits. Equal edits of one preset have
    /// one revision.
    [[nodiscard]] std::optional<DevelopPreset> exportLook(const std::optional<DevelopPreset>& preset,
                                                          const FileURL& photo) const;

private:
    using Edits = EditFile::Edits;
    using EditsPtr = std::shared_ptr<const Edits>;
    struct Saved;

    void scheduleSave();
    void save();
    void didSave(const Saved& saved);

    FileSystem& m_files;
    FileURL m_fileURL;
    Executor& m_writer;
    Executor& m_main;
    Alarm m_alarm;
    LatestOnly m_loading;
    EditsPtr m_stored; // what the file held last; null until it is read
    Edits m_changes;   // what it may not hold yet, with empty edits for what it should not
    std::optional<LightAdjustments> m_copied;
    std::string m_saveError;
    bool m_isSaving = false;
    std::uint64_t m_changeCount = 0;
    std::shared_ptr<EditStore*> m_self = std::make_shared<EditStore*>(this); // gone with it
};

} // namespace kelvara
