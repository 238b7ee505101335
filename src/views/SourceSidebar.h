#pragma once

#include "library/LibraryViewModel.h"
#include "views/Controls.h"

#include <QList>

class QVBoxLayout;

namespace kelvara {

class SidebarRow;

/// The places photos come from: cards, other volumes, and folders that were open before.
class SourceSidebar : public Panel {
    Q_OBJECT

public:
    /// `desktop` outlives it.
    SourceSidebar(LibraryViewModel& library, Desktop& desktop, QWidget* parent = nullptr);

signals:
    /// Asks for the support window.
    void supportRequested();

private:
    struct Entry {
        SidebarRow* row;
        FileURL source;
        FileURL volumeID; ///< Empty for a folder.
    };

    void rebuild();
    void markCurrent();
    void addHeading(const QString& title);
    void addVolume(const VolumeInfo& volume);
    void addRecentFolder(const FileURL& folder);
    void addRow(const Entry& entry);

    LibraryViewModel& m_library;
    Desktop& m_desktop;
    QWidget* m_list;
    QVBoxLayout* m_column;
    QList<Entry> m_entries;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
