#pragma once

#include "library/LibraryViewModel.h"
#include "views/Controls.h"
#include "views/CopyTexts.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

class QProgressBar;

namespace kelvara {

class SharingController;
class Sheet;

/// What a sheet shows while photos are copied.
class CopyProgressView : public QWidget {
    Q_OBJECT

public:
    explicit CopyProgressView(QWidget* parent = nullptr);
    void show(const CopyService::Progress& progress, CopyKind kind);
    /// The copy has been told to stop, and files in progress finish.
    void setStopping();
    [[nodiscard]] QPushButton* cancelButton() const { return m_cancel; }

private:
    QLabel* m_title;
    QProgressBar* m_bar;
    QLabel* m_fileSymbol;
    ElidedLabel* m_file;
    QLabel* m_remaining;
    QPushButton* m_cancel;
    QElapsedTimer m_sinceStart;
};

/// What a sheet shows when a copy has ended.
class CopyReportView : public QWidget {
    Q_OBJECT

public:
    /// `library` tells more of the copy that `report` is of.
    CopyReportView(const CopyService::Report& report, const LibraryViewModel& library,
                   QWidget* parent = nullptr);
    [[nodiscard]] QPushButton* showButton() const { return m_show; }
    [[nodiscard]] QPushButton* shareButton() const { return m_share; } ///< Null where nothing was exported.
    /// Null where photos are left to copy.
    [[nodiscard]] QPushButton* clearButton() const { return m_clear; }
    [[nodiscard]] QPushButton* doneButton() const { return m_done; }

private:
    QPushButton* m_show;
    QPushButton* m_share = nullptr;
    QPushButton* m_clear = nullptr;
    QPushButton* m_done;
};

/// What a sheet shows for a copy that could not begin.
class CopyFailedView : public QWidget {
    Q_OBJECT

public:
    explicit CopyFailedView(const QString& message, QWidget* parent = nullptr);
    [[nodiscard]] QPushButton* chooseButton() const { return m_choose; }
    [[nodiscard]] QPushButton* cancelButton() const { return m_cancel; }

private:
    QPushButton* m_choose;
    QPushButton* m_cancel;
};

/// Keeps a sheet in step with the library's copy or export.
class CopySheet : public QObject {
    Q_OBJECT

public:
    /// Everything outlives it.
    CopySheet(LibraryViewModel& library, Desktop& desktop, SharingController& sharing, Sheet& sheet,
              QObject* parent = nullptr);

private:
    void stateChanged();
    void refresh();
    void showOptions();
    void showProgress(const CopyService::Progress& progress);
    void showReport(const CopyService::Report& report);
    void share(const std::vector<FileURL>& files, const SharePicker::Anchor& anchor);
    void showFailure(const CopyFailed& failure);

    LibraryViewModel& m_library;
    Desktop& m_desktop;
    SharingController& m_sharing;
    Sheet& m_sheet;
    QPointer<CopyProgressView> m_progress;
    QTimer m_pause; // between two looks at a copy that runs
    Subscription m_subscription;
};

} // namespace kelvara
