#pragma once

#include "library/LibraryViewModel.h"
#include "views/Controls.h"

class QSlider;

namespace kelvara {

class Preferences;
class ShareMenuItems;

/// The top of the content: what is open, how it is shown, and the ways out of it: sharing and copying.
class LibraryToolbar : public Panel {
    Q_OBJECT

public:
    /// Everything outlives it.
    LibraryToolbar(LibraryViewModel& library, Preferences& preferences, const ShareMenuItems& sharing,
                   QWidget* parent = nullptr);

    /// The side of a thumbnail, in logical pixels.
    [[nodiscard]] double thumbnailSize() const;

signals:
    void thumbnailSizeChanged(double side);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeViewModePicker();
    QWidget* makeSizeSlider();
    QWidget* makeShareButton(const ShareMenuItems& sharing);
    void refreshTitle();
    void refreshViewMode();
    void makeRoom();

    LibraryViewModel& m_library;
    Preferences& m_preferences;
    ElidedLabel* m_title;
    QWidget* m_sizeControl;
    QSlider* m_size;
    QList<QWidget*> m_sizeSigns;
    QToolButton* m_share;
    QToolButton* m_gridSegment;
    QToolButton* m_loupeSegment;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
