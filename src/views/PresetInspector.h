#pragma once

#include "library/LibraryViewModel.h"
#include "presets/PresetStore.h"
#include "views/Controls.h"
#include "views/PresetListView.h"

class QCheckBox;
class QStackedLayout;

namespace kelvara {

class DropFrame;
class SearchLine;

/// The develop presets, to choose one that photos are shown through: search, the list, the chosen one's
/// strength, and importing. Takes files and folders of presets that are dropped on it.
class PresetInspector : public Panel {
    Q_OBJECT

public:
    /// Everything outlives it.
    PresetInspector(LibraryViewModel& library, PresetStore& presets, ThumbnailService& thumbnails,
                    PresetTileService& tiles, QWidget* parent = nullptr);

    /// Whether a visible tile's picture is still to come.
    [[nodiscard]] bool isLoading() const { return m_list->isLoading(); }
    void reloadPictures() { m_list->reloadPictures(); }

signals:
    void filesRequested(); ///< To import.
    void folderRequested();
    void removalRequested(const std::string& presetID);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    [[nodiscard]] QWidget* makeList();
    [[nodiscard]] QWidget* makeFooter();
    [[nodiscard]] QWidget* makeProgress(QWidget* parent);
    [[nodiscard]] QWidget* makeImportButton(QWidget* parent);
    void refreshList();
    void refreshImport();
    [[nodiscard]] bool hasImportedPresets() const;

    PresetStore& m_presets;
    SearchLine* m_search;
    PresetListView* m_list;
    QStackedLayout* m_pages;
    QLabel* m_noMatches;
    QLabel* m_hint;
    QCheckBox* m_shows;
    QWidget* m_progress;
    DropFrame* m_dropFrame;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
