#include "views/EditInspector.h"

#include "presets/AutoTone.h"
#include "presets/EditStore.h"
#include "views/CommandStates.h"
#include "views/HistogramView.h"
#include "views/LightGroup.h"
#include "views/LoupeView.h"
#include "views/Symbols.h"

#include <QBoxLayout>
#include <QScrollArea>
#include <QStackedLayout>

namespace kelvara {

namespace {
using Kind = WindowCommand::Kind;
}

EditInspector::EditInspector(const Services& services, QWidget* parent)
    : Panel{&Theme::panel, parent}, m_library{services.library}, m_presets{services.presets},
      m_edits{services.edits}, m_loupe{services.loupe}, m_histogram{services.rendering, services.main,
                                                                    [this] { refreshHistogram(); }},
      m_automatic{services.rendering, services.main} {
    m_histogramView = new HistogramView{this};
    m_light = new LightGroup{services.preferences, this};
    m_form = makeForm();
    m_absence = makeLabel(TextRole::body, Tone::quiet, this);
    m_absence->setWordWrap(true);
    m_absence->setAlignment(Qt::AlignCenter);
    m_absence->setContentsMargins(spacing::huge, 0, spacing::huge, 0);
    m_pages = new QStackedLayout{this};
    m_pages->setContentsMargins({});
    m_pages->addWidget(m_form);
    m_pages->addWidget(m_absence);
    observe();
    refresh();
}

QWidget* EditInspector::makeForm() {
    auto* content = new QWidget;
    auto* rows = new QVBoxLayout{content};
    rows->setContentsMargins(spacing::tiny, 0, spacing::tiny, spacing::large);
    rows->addWidget(m_light);
    rows->addStretch(1);
    auto* area = new QScrollArea{this};
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->viewport()->setAutoFillBackground(false);
    area->setWidget(content);
    content->setAutoFillBackground(false); // setWidget has turned it on

    auto* form = new QWidget{this};
    auto* column = new QVBoxLayout{form};
    column->setContentsMargins({});
    column->setSpacing(0);
    auto* top = new QVBoxLayout;
    top->setContentsMargins(spacing::medium, spacing::tiny, spacing::medium, spacing::small);
    top->addWidget(m_histogramView);
    column->addLayout(top);
    column->addWidget(area, 1);
    column->addWidget(makeFooter());
    return form;
}

QToolButton* EditInspector::makeCommand(Kind kind, const QString& title, const QString& help) {
    auto* button = makeChip(title, help, this);
    connect(button, &QToolButton::clicked, this, [this, kind] { emit chosen({kind}); });
    return button;
}

QWidget* EditInspector::makeFooter() {
    auto* footer = new Panel{&Theme::panel, this};
    footer->setHairlines(Qt::TopEdge);
    m_copy = makeCommand(Kind::copyEdits, tr("Copy Edits"), tr("Copy this photo's edits (⌘⇧C)"));
    m_paste = makeCommand(Kind::pasteEdits, tr("Paste Edits"), {});
    m_before = makeIconButton(u"circle.lefthalf.filled", tr("Before / After"),
                              tr("Show the photo before / after (\\)"), footer);
    m_before->setIcon(symbolIcon(u"circle.lefthalf.filled", &Theme::text, &Theme::accent));
    m_before->setCheckable(true);
    connect(m_before, &QToolButton::clicked, this, [this] {
        emit chosen({Kind::togglePresetBefore});
        refresh();
    });
    auto* row = new QHBoxLayout{footer};
    row->setContentsMargins(spacing::medium, spacing::small, spacing::small, spacing::small);
    row->setSpacing(spacing::small);
    row->addWidget(m_copy);
    row->addWidget(m_paste);
    row->addStretch(1);
    row->addWidget(m_before);
    return footer;
}

void EditInspector::observe() {
    connect(m_light, &LightGroup::gestureBegan, this, [this] { m_edits.beginGesture(); });
    connect(m_light, &LightGroup::moved, this, [this](auto slider, double amount) {
        m_automatic.cancel();
        m_edits.setSlider(slider, amount, m_url);
    });
    connect(m_light, &LightGroup::resetRequested, this, [this] { m_edits.reset(m_url); });
    connect(m_light, &LightGroup::automaticRequested, this, &EditInspector::setAutomatically);
    connect(m_histogramView, &HistogramView::clippingChosen, this, &EditInspector::refreshClipping);
    connect(&m_loupe, &LoupeView::pictureShown, this, &EditInspector::refresh);
    using P = LibraryProperty;
    m_subscriptions.push_back(m_library.observe({P::focusedID, P::visibleItems, P::checkedIDs},
                                                [this](const auto&) { refresh(); }));
    using E = EditProperty;
    m_subscriptions.push_back(
        m_edits.store().observe({E::adjustments, E::copiedAdjustments}, [this](const auto&) { refresh(); }));
}

void EditInspector::refresh() {
    const auto* item = isVisible() ? m_library.focusedItem() : nullptr;
    const auto isVideo = item && item->kind() == MediaKind::video;
    const auto url = item && !isVideo ? item->url : FileURL{};
    if (url != m_url) {
        m_automatic.cancel();
        m_light->letGo(); // what that changes is still of the photo before
        m_url = url;
    }
    m_absence->setText(isVideo ? tr("Videos can't be edited.") : tr("Select a photo to edit it."));
    m_pages->setCurrentWidget(url.isEmpty() ? m_absence : m_form);
    m_histogram.show(url.isEmpty() ? nullptr : m_loupe.imageView().image());
    refreshHistogram();
    if (url.isEmpty()) return;
    m_light->show(m_edits.store().adjustments(url));
    const auto paste = commandState({Kind::pasteEdits}, m_library, m_edits, *window());
    m_paste->setEnabled(paste.isEnabled);
    m_paste->setToolTip(tr("%1 (⌘⇧V)").arg(paste.title));
    m_before->setEnabled(m_loupe.canShowBefore());
    m_before->setChecked(m_loupe.showsBefore());
}

void EditInspector::refreshHistogram() {
    m_histogramView->show(m_histogram.histogram());
    const auto isGrid = m_library.viewMode() == ViewMode::grid;
    m_histogramView->setHint(isGrid ? tr("Open the photo to see its histogram") : QString{});
    m_light->setAutomaticEnabled(m_histogram.histogram() && m_loupe.plainPicture());
}

void EditInspector::refreshClipping() {
    m_loupe.showClipping(isVisible() ? m_histogramView->clipping() : Clipping{});
}

void EditInspector::setAutomatically() {
    const auto plain = m_loupe.plainPicture();
    if (!plain) return;
    const auto chosen = m_presets.showsPreviews() ? m_presets.selectedPreset() : nullptr;
    m_automatic.start(
        [bitmap = plain->bitmap(0), chosen](const std::stop_token&) -> std::optional<LightAdjustments> {
            const auto histogram = Histogram::of(bitmap, PictureHistogram::sampleSize);
            if (!histogram) return std::nullopt;
            return AutoTone::adjustments(*histogram, chosen ? std::optional{*chosen} : std::nullopt);
        },
        [this, url = m_url](const std::optional<LightAdjustments>& adjustments) {
            if (adjustments) m_edits.setAutomatic(*adjustments, url);
        });
}

void EditInspector::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    refresh();
    refreshClipping();
}

void EditInspector::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    refresh();
    refreshClipping();
}

} // namespace kelvara
