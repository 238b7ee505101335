#pragma once

#include "library/LibraryViewModel.h"

#include <QWidget>

#include <array>

class QCheckBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QToolButton;

namespace kelvara {

class Picker;
class ResettingSlider;

/// What a sheet shows before photos are exported: how the files are written, and where to. What is chosen is
/// remembered at once.
class ExportOptionsView : public QWidget {
    Q_OBJECT

public:
    /// The library outlives it, and its `exportItems` are asked about.
    explicit ExportOptionsView(LibraryViewModel& library, QWidget* parent = nullptr);

    /// The look that photos may be exported with, and the settings as they are now.
    [[nodiscard]] CopyService::Export job() const;
    [[nodiscard]] QPushButton* cancelButton() const { return m_cancel; }
    [[nodiscard]] QPushButton* shareButton() const { return m_share; }
    [[nodiscard]] QPushButton* exportButton() const { return m_export; }

private:
    [[nodiscard]] QGridLayout* makeForm();
    void addFormat(QGridLayout& form);
    void addQuality(QGridLayout& form);
    void addBitDepth(QGridLayout& form);
    void addSize(QGridLayout& form);
    void addToggles(QGridLayout& form);
    [[nodiscard]] QCheckBox* addToggle(QGridLayout& form, const QString& title, const QString& help = {});
    [[nodiscard]] QLabel* makeNote();
    /// `change` alters a copy of the settings, which then count.
    template <typename Change> void alter(Change change);
    void refresh();
    void refreshEffects();

    LibraryViewModel& m_library;
    std::array<QToolButton*, ExportSettings::formats.size()> m_formats{};
    ResettingSlider* m_quality;
    QList<QWidget*> m_qualityParts;
    QLabel* m_qualityValue;
    QToolButton* m_eightBit;
    QToolButton* m_sixteenBit;
    QList<QWidget*> m_bitDepthParts;
    Picker* m_size;
    QCheckBox* m_look = nullptr; // only where there is one
    QCheckBox* m_location;
    QCheckBox* m_dateFolders;
    QLabel* m_note;
    QPushButton* m_cancel;
    QPushButton* m_share;
    QPushButton* m_export;
    Subscription m_subscription;
};

} // namespace kelvara
