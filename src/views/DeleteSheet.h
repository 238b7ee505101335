#pragma once

#include "library/LibraryViewModel.h"
#include "views/ThumbnailSources.h"

#include <QWidget>

#include <optional>

class QCheckBox;
class QLabel;
class QPushButton;

namespace kelvara {

class DeletePreviewStrip;

/// What a sheet asks before photos go: made while the library has a `pendingDeletion`, and answers it.
class DeleteSheet : public QWidget {
    Q_OBJECT

public:
    /// `library` outlives it; see `DeletePreviewStrip` for `thumbnails`.
    DeleteSheet(LibraryViewModel& library, const std::optional<ThumbnailSources>& thumbnails,
                QWidget* parent = nullptr);

    [[nodiscard]] QPushButton* cancelButton() const { return m_cancel; }
    [[nodiscard]] QPushButton* deleteButton() const { return m_delete; }
    /// What Return presses: what can't be undone takes more than that.
    [[nodiscard]] QPushButton* defaultButton() const;
    [[nodiscard]] bool isLoading() const;

private:
    void refreshNote();

    LibraryViewModel& m_library;
    DeletePreviewStrip* m_strip;
    QCheckBox* m_paired = nullptr; // only where there are paired files
    QLabel* m_note;
    QPushButton* m_cancel;
    QPushButton* m_delete;
};

} // namespace kelvara
