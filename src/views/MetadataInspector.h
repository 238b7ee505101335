#pragma once

#include "library/LibraryViewModel.h"
#include "services/MetadataService.h"
#include "views/Controls.h"

class QStackedLayout;

namespace kelvara {

class FormGroup;
class SelectableText;
class StarControl;

/// What is known of the focused photo: the file and what the user decided about it, how it was taken, and on
/// demand everything else that stands in it. Reads only while it is visible; what it shows is always of that
/// photo.
class MetadataInspector : public Panel {
    Q_OBJECT

public:
    MetadataInspector(LibraryViewModel& library, MetadataService& metadata, QWidget* parent = nullptr);

    /// Whether something of the focused photo is still being read.
    [[nodiscard]] bool isLoading() const { return m_isLoadingExif || m_isLoadingSections; }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct CaptureRow {
        SelectableText* value;
        QString (*text)(const ExifInfo&);
    };
    [[nodiscard]] QWidget* makeForm();
    [[nodiscard]] FormGroup* makePhoto();
    [[nodiscard]] FormGroup* makeCapture();
    [[nodiscard]] QWidget* makeDump();
    void follow();
    void refreshPhoto();
    void loadExif();
    void showExif(const std::optional<ExifInfo>& info);
    void setDumpOpen(bool open);
    void loadSections();
    void showSections();

    LibraryViewModel& m_library;
    MetadataService& m_metadata;
    QStackedLayout* m_pages;
    QWidget* m_form;
    QWidget* m_empty;

    FileURL m_url; ///< The photo that is shown; empty for none.
    bool m_isLoadingExif = false;
    bool m_isLoadingSections = false;
    MetadataRequest m_exifRequest;
    MetadataRequest m_sectionsRequest;
    std::vector<MetadataSection> m_sections;

    SelectableText* m_file = nullptr;
    SelectableText* m_size = nullptr;
    SelectableText* m_dimensions = nullptr;
    StarControl* m_stars = nullptr;
    QLabel* m_unrated = nullptr;
    SelectableText* m_savedTo = nullptr;
    QLabel* m_savedToNote = nullptr;
    SelectableText* m_copy = nullptr;
    FormGroup* m_captureGroup = nullptr;
    std::vector<CaptureRow> m_capture;
    QToolButton* m_disclosure = nullptr;
    QLabel* m_dumpState = nullptr;
    SelectableText* m_dump = nullptr;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
