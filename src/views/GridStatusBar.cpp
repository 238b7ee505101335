#include "views/GridStatusBar.h"

#include "text/ByteCount.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QEvent>
#include <QHBoxLayout>

namespace kelvara {

namespace {
constexpr int roomForName = 440;
constexpr int roomForBytes = 380;
constexpr int roomForAll = 300;
} // namespace

GridStatusBar::GridStatusBar(LibraryViewModel& library, QWidget* parent)
    : Panel{&Theme::window, parent}, m_library{library} {
    setHairlines(Qt::TopEdge);
    m_shown = makeLabel(TextRole::caption, Tone::quiet, this);
    m_markSymbol = new QLabel{this};
    m_marked = makeLabel(TextRole::caption, Tone::normal, this);
    m_markedBytes = makeLabel(TextRole::caption, Tone::quiet, this);
    m_focused = new ElidedLabel{this};
    dress(*m_focused, TextRole::caption, Tone::quiet);
    const auto help = tr("⇧-click a photo to mark every photo up to it");
    m_marked->setToolTip(help);
    m_markedBytes->setToolTip(help);
    m_markSymbol->setToolTip(help);

    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(spacing::medium, spacing::tiny + 1, spacing::medium, spacing::tiny);
    row->setSpacing(0);
    row->addWidget(m_shown);
    row->addSpacing(spacing::large);
    row->addWidget(m_markSymbol);
    row->addSpacing(spacing::tiny);
    row->addWidget(m_marked);
    row->addWidget(m_markedBytes);
    row->addSpacing(spacing::large);
    row->addStretch(1);
    row->addWidget(m_focused);

    using P = LibraryProperty;
    m_subscription =
        m_library.observe({P::items, P::visibleItems, P::checkedIDs, P::focusedID, P::deletingCount},
                          [this](const auto&) { refresh(); });
    refresh();
}

void GridStatusBar::resizeEvent(QResizeEvent* event) {
    Panel::resizeEvent(event);
    makeRoom();
}

void GridStatusBar::changeEvent(QEvent* event) {
    Panel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) refresh();
}

void GridStatusBar::makeRoom() {
    // The inspector names the photo too, and the marks are what the work is about.
    const auto hasMarks = !m_library.checkedIDs().empty();
    m_focused->setVisible(width() >= roomForName);
    m_markedBytes->setVisible(hasMarks && width() >= roomForBytes);
    m_shown->setVisible(!hasMarks || width() >= roomForAll);
}

void GridStatusBar::refresh() {
    const auto total = static_cast<std::int64_t>(m_library.items().size());
    const auto shown = static_cast<std::int64_t>(m_library.visibleItems().size());
    const auto going = static_cast<std::int64_t>(m_library.deletingCount());
    m_shown->setText(total == 0  ? QString{}
                     : going > 0 ? tr("Deleting %1 of %2 files…").arg(countText(going), countText(total))
                                 : tr("%1 of %2 files").arg(countText(shown), countText(total)));

    const auto marked = static_cast<std::int64_t>(m_library.checkedIDs().size());
    m_marked->setVisible(marked > 0);
    m_markSymbol->setVisible(marked > 0);
    makeRoom();
    if (marked > 0) {
        m_marked->setText(tr("%1 marked ").arg(countText(marked)));
        m_markedBytes->setText(text(byteCountText(m_library.checkedBytes())));
        m_markSymbol->setPixmap(
            symbol(u"checkmark.circle.fill", 14, Theme::current().mark, devicePixelRatioF()));
    }

    const auto* item = m_library.focusedItem();
    m_focused->setText(item ? tr("%1  ·  %2").arg(nameText(item->url), text(byteCountText(item->fileSize)))
                            : QString{});
}

} // namespace kelvara
