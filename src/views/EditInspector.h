#pragma once

#include "library/LibraryViewModel.h"
#include "presets/EditHistory.h"
#include "presets/PresetStore.h"
#include "views/Controls.h"
#include "views/PictureHistogram.h"
#include "views/WindowKeys.h"

class QStackedLayout;

namespace kelvara {

class HistogramView;
class LightGroup;
class LoupeView;

/// The focused photo's edits: the histogram of what the single image shows of it, and its light. Works only
/// while it is visible.
class EditInspector : public Panel {
    Q_OBJECT

public:
    /// What it works with; everything outlives it.
    struct Services {
        LibraryViewModel& library;
        PresetStore& presets;
        EditHistory& edits;
        Preferences& preferences;
        LoupeView& loupe;
        Executor& rendering; ///< Measures pictures.
        Executor& main;
    };

    explicit EditInspector(const Services& services, QWidget* parent = nullptr);

    /// Whether the histogram is still to come.
    [[nodiscard]] bool isLoading() const { return m_histogram.isLoading(); }

signals:
    void chosen(const kelvara::WindowCommand& command);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] QWidget* makeForm();
    [[nodiscard]] QWidget* makeFooter();
    [[nodiscard]] QToolButton* makeCommand(WindowCommand::Kind kind, const QString& title,
                                           const QString& help);
    void observe();
    void refresh();
    void refreshHistogram();
    void refreshClipping();
    void setAutomatically();

    LibraryViewModel& m_library;
    PresetStore& m_presets;
    EditHistory& m_edits;
    LoupeView& m_loupe;
    PictureHistogram m_histogram;
    LatestOnly m_automatic;
    FileURL m_url; ///< The photo that is shown; empty for none.
    QStackedLayout* m_pages;
    QWidget* m_form;
    QLabel* m_absence;
    HistogramView* m_histogramView;
    LightGroup* m_light;
    QToolButton* m_copy = nullptr;
    QToolButton* m_paste = nullptr;
    QToolButton* m_before = nullptr;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
