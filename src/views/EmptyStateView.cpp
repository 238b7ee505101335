#include "views/EmptyStateView.h"

#include "views/Symbols.h"

#include <QEvent>
#include <QVBoxLayout>

#include <chrono>

#include <algorithm>

namespace kelvara {

namespace {
constexpr int symbolSide = 56;
constexpr int textWidth = 380;
} // namespace

EmptyStateView::EmptyStateView(LibraryViewModel& library, QWidget* parent)
    : Panel{&Theme::canvas, parent}, m_library{library} {
    m_symbol = new QLabel{this};
    m_busy = new BusyIndicator{32, this};
    m_title = makeLabel(TextRole::title, Tone::normal, this);
    m_description = makeLabel(TextRole::body, Tone::quiet, this);
    m_button = new QPushButton{this};
    m_title->setWordWrap(true);
    m_description->setWordWrap(true);
    for (auto* label : {m_symbol, m_title, m_description}) label->setAlignment(Qt::AlignCenter);
    m_button->setFocusPolicy(Qt::TabFocus);
    connect(m_button, &QPushButton::clicked, this, [this] {
        if (m_cause) removeCause(*m_cause, m_library);
    });

    auto* column = new QVBoxLayout{this};
    column->setSpacing(0);
    column->setContentsMargins(spacing::large, spacing::huge, spacing::large, spacing::huge);
    column->addStretch(5);
    column->addWidget(m_symbol, 0, Qt::AlignHCenter);
    column->addWidget(m_busy, 0, Qt::AlignHCenter);
    column->addSpacing(spacing::large);
    column->addWidget(m_title, 0, Qt::AlignHCenter);
    column->addSpacing(spacing::small);
    column->addWidget(m_description, 0, Qt::AlignHCenter);
    column->addSpacing(spacing::large);
    column->addWidget(m_button, 0, Qt::AlignHCenter);
    // A little above the middle, where the eye looks for it.
    column->addStretch(6);

    // A folder that is read at once should not flash a message.
    m_patience.setSingleShot(true);
    m_patience.setInterval(std::chrono::milliseconds{250});
    connect(&m_patience, &QTimer::timeout, this, &EmptyStateView::refresh);

    using P = LibraryProperty;
    m_subscription = m_library.observe({P::sourceURL, P::volumes, P::items, P::isScanning, P::scanError,
                                        P::visibleItems, P::searchText, P::checkedIDs, P::showsOnlyChecked,
                                        P::ratings, P::ratingFilter, P::hiddenExtensions},
                                       [this](const auto&) { refresh(); });
    refresh();
}

void EmptyStateView::refresh() {
    const auto cause = emptyCause(emptyFacts(m_library));
    const auto hasChanged = cause != m_cause;
    m_cause = cause;
    if (hasChanged && cause == EmptyCause::scanning) m_patience.start();
    if (cause != EmptyCause::scanning) m_patience.stop();
    if (m_cause) showText();
    if (hasChanged) emit causeChanged();
}

void EmptyStateView::showText() {
    const auto content = emptyText(*m_cause, m_library);
    const auto isBusy = m_cause == EmptyCause::scanning;
    m_symbolName = content.symbol;
    showSymbol();
    m_symbol->setVisible(!isBusy);
    m_busy->setVisible(isBusy && !m_patience.isActive());
    m_title->setText(content.title);
    m_title->setVisible(!m_patience.isActive());
    dress(*m_title, isBusy ? TextRole::body : TextRole::title, isBusy ? Tone::quiet : Tone::normal);
    m_description->setText(content.description);
    m_description->setVisible(!content.description.isEmpty());
    m_button->setText(content.button);
    m_button->setVisible(!content.button.isEmpty());
}

void EmptyStateView::showSymbol() {
    if (m_symbolName.isEmpty()) return m_symbol->clear();
    m_symbol->setPixmap(symbol(m_symbolName, symbolSide, Theme::current().tertiaryText, devicePixelRatioF()));
}

void EmptyStateView::resizeEvent(QResizeEvent* event) {
    Panel::resizeEvent(event);
    const auto width = std::clamp(this->width() - 2 * spacing::large, 1, textWidth);
    for (auto* label : {m_title, m_description}) label->setFixedWidth(width);
}

void EmptyStateView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) showSymbol();
    Panel::changeEvent(event);
}

} // namespace kelvara
