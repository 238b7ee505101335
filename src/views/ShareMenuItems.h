#pragma once

#include "model/PhotoItem.h"
#include "platform/SharePicker.h"
#include "presets/ExportLook.h"

#include <optional>
#include <vector>

class QMenu;
class QString;
class QWidget;

namespace kelvara {

class LibraryViewModel;
class PresetStore;
class SharingController;

/// The ways in which photos leave the window, as entries of menus: as small JPEGs that are made at once, as
/// they are, or as what the export options say.
class ShareMenuItems {
public:
    /// Everything outlives it.
    ShareMenuItems(LibraryViewModel& library, const PresetStore& presets, const EditStore& edits,
                   SharingController& sharing)
        : m_library{library}, m_presets{presets}, m_edits{edits}, m_sharing{sharing} {}

    /// Adds the entries for the action targets of the focused photo, as they are now; does nothing without
    /// one. What is shared opens at `anchor`.
    void addTo(QMenu& menu, const std::optional<SharePicker::Anchor>& anchor = {}) const;

    /// Opens the options of an export of the still images among `photos`, as they look at the moment.
    void exportPhotos(std::vector<PhotoItem> photos) const;

private:
    [[nodiscard]] std::optional<ExportLook> look(const std::vector<PhotoItem>& photos) const;
    void addJPEGs(QMenu& menu, const std::vector<PhotoItem>& photos,
                  const std::optional<SharePicker::Anchor>& anchor) const;
    void addOriginals(QMenu& menu, const std::vector<PhotoItem>& photos,
                      const std::optional<SharePicker::Anchor>& anchor) const;
    void addExport(QMenu& menu, const std::vector<PhotoItem>& photos) const;

    LibraryViewModel& m_library;
    const PresetStore& m_presets;
    const EditStore& m_edits;
    SharingController& m_sharing;
};

/// Where the widget is on the screen.
[[nodiscard]] SharePicker::Anchor shareAnchor(const QWidget& widget);

} // namespace kelvara
