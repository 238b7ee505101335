#include "views/FilterBar.h"

#include "views/SearchField.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QActionGroup>
#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QWidgetAction>

#include <algorithm>

namespace kelvara {

namespace {

QString stars(int count) { return QString{count, u'★'}; }

constexpr int roomForChips = 460;
constexpr int roomForPlaceholder = 300;

QToolButton* makeMenuButton(QStringView symbolName, const QString& name, QMenu* menu, QWidget* parent) {
    auto* button = makeIconButton(symbolName, name, {}, parent);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setMenu(menu);
    return button;
}

} // namespace

FilterBar::FilterBar(LibraryViewModel& library, QWidget* parent)
    : Panel{&Theme::window, parent}, m_library{library} {
    setHairlines(Qt::BottomEdge);
    // Not while the row is being laid out: what shows and hides in it would lay it out again.
    m_roomIsDue.setSingleShot(true);
    m_roomIsDue.setInterval(0);
    connect(&m_roomIsDue, &QTimer::timeout, this, &FilterBar::makeRoom);
    m_search = new SearchField{library, this};
    m_search->setMaximumWidth(260);
    makeMenus();
    makeChips();

    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(spacing::medium, spacing::tiny, spacing::small, spacing::tiny + 3);
    row->setSpacing(spacing::small);
    row->addWidget(m_search, 3);
    row->addSpacing(spacing::tiny);
    row->addWidget(m_marked);
    row->addWidget(m_rating);
    row->addWidget(m_types, 4);
    row->addWidget(m_filterButton);
    row->addWidget(m_sortButton);

    using P = LibraryProperty;
    const auto follow = [this](std::initializer_list<P> properties, void (FilterBar::*refresh)()) {
        m_subscriptions.push_back(
            m_library.observe(properties, [this, refresh](const auto&) { (this->*refresh)(); }));
        (this->*refresh)();
    };
    follow({P::checkedIDs, P::showsOnlyChecked}, &FilterBar::refreshMarkedChip);
    follow({P::ratingFilter}, &FilterBar::refreshRatingChip);
    follow({P::items, P::hiddenExtensions, P::ratingFilter, P::showsOnlyChecked}, &FilterBar::refreshTypes);
    follow({P::sortOrder, P::sortsAscending}, &FilterBar::refreshSort);
}

void FilterBar::makeMenus() {
    m_ratingMenu = new QMenu{this};
    m_filterMenu = new QMenu{this};
    m_sortMenu = new QMenu{this};
    connect(m_ratingMenu, &QMenu::aboutToShow, this, &FilterBar::fillRatingMenu);
    connect(m_filterMenu, &QMenu::aboutToShow, this, &FilterBar::fillFilterMenu);
    connect(m_sortMenu, &QMenu::aboutToShow, this, &FilterBar::fillSortMenu);
    m_filterButton = makeMenuButton(u"line.3.horizontal.decrease.circle", tr("Filter"), m_filterMenu, this);
    m_filterButton->setToolTip(tr("Filter by mark, rating or file type"));
    m_sortButton = makeMenuButton(u"arrow.up", tr("Sort"), m_sortMenu, this);
    m_sortButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_sortButton->setFont(kelvara::font(TextRole::caption));
}

void FilterBar::makeChips() {
    m_marked = makeChip(tr("Marked"), {}, this);
    setSymbol(*m_marked, symbolIcon(u"checkmark.circle.fill", &Theme::mark, &Theme::onAccent), 14);
    m_marked->setCheckable(true);
    connect(m_marked, &QToolButton::clicked, this, [this](bool on) { m_library.setShowsOnlyChecked(on); });

    m_rating = makeChip(tr("Rating"), tr("Filter by star rating"), this);
    m_rating->setPopupMode(QToolButton::InstantPopup);
    m_rating->setMenu(m_ratingMenu);

    m_types = new QWidget{this};
    m_types->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_types->setMinimumWidth(1); // its width decides on the chips, and not they on it
    m_types->installEventFilter(this);
    m_typeRow = new QHBoxLayout{m_types};
    m_typeRow->setContentsMargins(0, 0, 0, 0);
    m_typeRow->setSpacing(spacing::tiny);
    m_typeRow->addStretch(1);
}

void FilterBar::refreshMarkedChip() {
    const auto count = static_cast<std::int64_t>(m_library.checkedIDs().size());
    m_marked->setText(count > 0 ? QStringLiteral("%1  %2").arg(tr("Marked"), countText(count))
                                : tr("Marked"));
    m_marked->setChecked(m_library.showsOnlyChecked());
    m_marked->setToolTip(m_library.showsOnlyChecked() ? tr("Show all files") : tr("Show only marked files"));
}

void FilterBar::refreshRatingChip() {
    const auto& filter = m_library.ratingFilter();
    const auto title = !filter            ? tr("Rating")
                       : filter->lowest() ? stars(filter->lowest()->rawValue())
                                          : tr("Unrated");
    m_rating->setText(title);
    m_rating->setAccessibleName(filter ? QStringLiteral("%1: %2").arg(tr("Rating"), title) : tr("Rating"));
    // A star before stars would count as one.
    const auto showsStars = filter && filter->lowest();
    if (showsStars)
        m_rating->setIcon({});
    else
        setSymbol(*m_rating, symbolIcon(u"star.fill", filter ? &Theme::onAccent : &Theme::star), 14);
    setStyleProperty(*m_rating, "pictured", !showsStars);
    setChipActive(*m_rating, filter.has_value());
}

void FilterBar::refreshTypes() {
    const auto& types = m_library.extensions();
    if (types != m_shownTypes) {
        qDeleteAll(m_typeChips);
        m_typeChips.clear();
        m_shownTypes = types;
        for (const auto& type : types) {
            auto* chip = makeChip(text(type), {}, m_types);
            connect(chip, &QToolButton::clicked, this, [this, type] { m_library.toggleExtension(type); });
            m_typeRow->insertWidget(static_cast<int>(m_typeChips.size()), chip);
            m_typeChips.append(chip);
        }
    }
    bool isFiltering = m_library.ratingFilter().has_value() || m_library.showsOnlyChecked();
    for (qsizetype i = 0; i < m_typeChips.size(); ++i) {
        const auto& type = m_shownTypes[static_cast<std::size_t>(i)];
        const auto isHidden = m_library.hiddenExtensions().contains(type);
        const auto help = (isHidden ? tr("Show .%1 files") : tr("Hide .%1 files")).arg(text(type));
        m_typeChips[i]->setToolTip(help);
        m_typeChips[i]->setAccessibleName(help);
        setStyleProperty(*m_typeChips[i], "struck", isHidden);
        isFiltering = isFiltering || isHidden;
    }
    m_filterButton->setIcon(isFiltering
                                ? symbolIcon(u"line.3.horizontal.decrease.circle.fill", &Theme::accent)
                                : symbolIcon(u"line.3.horizontal.decrease.circle", &Theme::text));
    m_roomIsDue.start();
}

void FilterBar::refreshSort() {
    const auto ascending = m_library.sortsAscending();
    setSymbol(*m_sortButton, symbolIcon(ascending ? u"arrow.up" : u"arrow.down", &Theme::text), 14);
    const auto order = text(title(m_library.sortOrder()));
    m_sortButton->setText(order);
    const auto help = tr("Sort by %1, %2").arg(order, text(directionTitle(m_library.sortOrder(), ascending)));
    m_sortButton->setToolTip(help);
    m_sortButton->setAccessibleName(help);
}

void FilterBar::fillRatingMenu() {
    m_ratingMenu->clear();
    auto* group = new QActionGroup{m_ratingMenu};
    const auto add = [&](const QString& title, const std::optional<RatingFilter>& filter) {
        auto* action =
            m_ratingMenu->addAction(title, this, [this, filter] { m_library.setRatingFilter(filter); });
        action->setCheckable(true);
        action->setChecked(m_library.ratingFilter() == filter);
        group->addAction(action);
    };
    add(tr("Any Rating"), std::nullopt);
    add(tr("Unrated"), RatingFilter::unrated());
    m_ratingMenu->addSeparator();
    for (int count = 1; count <= Rating::maximum; ++count) {
        add(stars(count), RatingFilter::atLeast(*Rating::fromRawValue(count)));
    }
}

void FilterBar::fillFilterMenu() {
    m_filterMenu->clear();
    m_filterMenu->addAction(tr("Show All"), this, [this] {
        m_library.setShowsOnlyChecked(false);
        m_library.setRatingFilter(std::nullopt);
        m_library.setHiddenExtensions({});
    });
    m_filterMenu->addSeparator();
    auto* marked =
        m_filterMenu->addAction(tr("Marked"), this, [this](bool on) { m_library.setShowsOnlyChecked(on); });
    marked->setCheckable(true);
    marked->setChecked(m_library.showsOnlyChecked());
    fillRatingMenu();
    m_filterMenu->addAction(tr("Rating"))->setMenu(m_ratingMenu);
    if (m_library.extensions().empty()) return;
    m_filterMenu->addSeparator();
    for (const auto& type : m_library.extensions()) {
        const auto isHidden = m_library.hiddenExtensions().contains(type);
        const auto title = (isHidden ? tr("Show .%1 files") : tr("Hide .%1 files")).arg(text(type));
        m_filterMenu->addAction(title, this, [this, type] { m_library.toggleExtension(type); });
    }
}

void FilterBar::fillSortMenu() {
    m_sortMenu->clear();
    const auto addHeading = [this](const QString& title) {
        auto* heading = makeLabel(TextRole::section, Tone::quiet, m_sortMenu, title);
        heading->setContentsMargins(spacing::huge + 3, spacing::tiny, spacing::medium, spacing::hair);
        auto* action = new QWidgetAction{m_sortMenu};
        action->setDefaultWidget(heading);
        action->setEnabled(false);
        m_sortMenu->addAction(action);
    };
    addHeading(tr("Sort By"));
    auto* orders = new QActionGroup{m_sortMenu};
    for (const auto order : {SortOrder::captureDate, SortOrder::name, SortOrder::fileSize}) {
        auto* action =
            m_sortMenu->addAction(text(title(order)), this, [this, order] { m_library.setSortOrder(order); });
        action->setCheckable(true);
        action->setChecked(m_library.sortOrder() == order);
        orders->addAction(action);
    }
    m_sortMenu->addSeparator();
    addHeading(tr("Order"));
    auto* directions = new QActionGroup{m_sortMenu};
    for (const auto ascending : {true, false}) {
        auto* action = m_sortMenu->addAction(text(directionTitle(m_library.sortOrder(), ascending)), this,
                                             [this, ascending] { m_library.setSortsAscending(ascending); });
        action->setCheckable(true);
        action->setChecked(m_library.sortsAscending() == ascending);
        directions->addAction(action);
    }
}

void FilterBar::makeRoom() {
    const auto isNarrow = width() < 600;
    m_sortButton->setToolButtonStyle(isNarrow ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextBesideIcon);
    m_search->setMinimumWidth(width() >= roomForPlaceholder ? 166 : 110);
    // The filter button's menu has them too.
    for (auto* chip : {m_marked, m_rating}) chip->setVisible(width() >= roomForChips);

    // One type needs no filter; and half a row of them would tell less than none, as the menu has them all.
    int wanted = 0;
    for (const auto* chip : m_typeChips) {
        chip->ensurePolished(); // before it is, it seems narrower
        wanted += chip->sizeHint().width() + m_typeRow->spacing();
    }
    const auto fits = m_typeChips.size() > 1 && wanted <= m_types->width();
    for (auto* chip : m_typeChips) chip->setVisible(fits);
}

bool FilterBar::eventFilter(QObject* watched, QEvent* event) {
    // Also where the bar keeps its size, as when other chips come and go.
    if (watched == m_types && event->type() == QEvent::Resize) m_roomIsDue.start();
    return Panel::eventFilter(watched, event);
}

void FilterBar::resizeEvent(QResizeEvent* event) {
    Panel::resizeEvent(event);
    m_roomIsDue.start();
}

} // namespace kelvara
