#include "views/PhotoCells.h"

#include "views/AccessibleListItem.h"
#include "views/Text.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QWidget>

#include <array>
#include <unordered_map>

namespace kelvara {

namespace {

/// A screenful many times over. Tools that walk through thousands of photos ask anew for the first ones.
constexpr std::size_t mostKept = 2000;

QString cellText(const char* text) { return QCoreApplication::translate("ThumbnailCell", text); }

/// One photo. It is that photo wherever it moves, and invalid while it isn't shown.
class AccessibleCell : public AccessibleListItem {
public:
    AccessibleCell(QWidget& view, FileURL url)
        : AccessibleListItem{view}, m_view{view}, m_url{std::move(url)} {}

    [[nodiscard]] bool isValid() const override { return index().has_value(); }

    [[nodiscard]] QRect rect() const override {
        const auto at = index();
        if (!at) return {};
        const auto cell = cells().cellRect(*at);
        return {cells().canvas().mapToGlobal(cell.topLeft()), cell.size()};
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        const auto at = index();
        if (!at) return {};
        // The bus has no text of its own for values of list items, so the description says the same.
        if (kind == QAccessible::Value || kind == QAccessible::Description)
            return ThumbnailCell::accessibleValue(library().isChecked(m_url), library().rating(m_url),
                                                  cells().state(*at).isEdited);
        if (kind != QAccessible::Name) return {};
        const auto name = nameText(m_url);
        const auto isUnreadable = cells().state(*at).content == ThumbnailCellState::Content::unreadable;
        return isUnreadable ? ThumbnailCell::unreadableText(name) : name;
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.focusable = true;
        state.selectable = true;
        state.checkable = true;
        state.checked = library().isChecked(m_url);
        state.selected = m_url == library().focusedID();
        state.focused = state.selected && m_view.hasFocus();
        const auto at = index();
        state.offscreen = !at || !cells().canvas().rect().intersects(cells().cellRect(*at));
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return {pressAction(), setFocusAction(), toggleAction()};
    }
    [[nodiscard]] QString localizedActionName(const QString& name) const override {
        if (name != toggleAction()) return QAccessibleActionInterface::localizedActionName(name);
        return library().isChecked(m_url) ? cellText("Unmark for Copy") : cellText("Mark for Copy");
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString& name) const override {
        return name == toggleAction() ? QStringList{QStringLiteral("S")} : QStringList{};
    }
    void doAction(const QString& name) override {
        if (!isValid()) return;
        if (name == toggleAction()) return library().toggleChecked(FileURL{m_url});
        library().setFocusedID(FileURL{m_url});
        if (name == pressAction() && library().viewMode() == ViewMode::grid) library().toggleViewMode();
    }

private:
    [[nodiscard]] PhotoCells& cells() const { return dynamic_cast<PhotoCells&>(m_view); }
    [[nodiscard]] LibraryViewModel& library() const { return cells().library(); }
    [[nodiscard]] std::optional<std::size_t> index() const { return library().visibleIndex(m_url); }

    QWidget& m_view;
    FileURL m_url;
};

/// The view as a list of its photos.
class AccessibleCells : public QAccessibleWidget {
public:
    explicit AccessibleCells(QWidget& view) : QAccessibleWidget{&view, QAccessible::List} {}
    ~AccessibleCells() override { forgetCells(); }

    [[nodiscard]] int childCount() const override {
        return static_cast<int>(cells().library().visibleItems().size());
    }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) return nullptr;
        const auto& url = cells().library().visibleItems()[static_cast<std::size_t>(index)].url;
        if (const auto known = m_ids.find(url); known != m_ids.end())
            return QAccessible::accessibleInterface(known->second);
        if (m_ids.size() >= mostKept) forgetCells();
        auto* cell = new AccessibleCell{*widget(), url};
        m_ids.emplace(url, QAccessible::registerAccessibleInterface(cell));
        return cell;
    }
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        const auto index = cells().indexAt(cells().canvas().mapFromGlobal(QPoint{x, y}));
        return index ? child(static_cast<int>(*index)) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        for (const auto& [url, id] : m_ids) {
            if (QAccessible::accessibleInterface(id) != child) continue;
            const auto index = cells().library().visibleIndex(url);
            return index ? static_cast<int>(*index) : -1;
        }
        return -1;
    }
    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        const auto focused = cells().library().focusedIndex();
        return focused && widget()->hasFocus() ? child(static_cast<int>(*focused)) : nullptr;
    }

private:
    [[nodiscard]] PhotoCells& cells() const { return dynamic_cast<PhotoCells&>(*widget()); }
    void forgetCells() const {
        for (const auto& [url, id] : m_ids) QAccessible::deleteAccessibleInterface(id);
        m_ids.clear();
    }

    mutable std::unordered_map<FileURL, QAccessible::Id> m_ids; // of the photos that were asked for
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* view = qobject_cast<QWidget*>(object);
    return dynamic_cast<PhotoCells*>(view) ? new AccessibleCells{*view} : nullptr;
}

/// Tells tools what happens to the focused photo.
class Announcer : public QObject {
public:
    explicit Announcer(QWidget& view) : QObject{&view}, m_view{view} {
        using P = LibraryProperty;
        auto& library = dynamic_cast<PhotoCells&>(view).library();
        m_subscriptions = {
            library.observe({P::visibleItems}, [this](const auto&) { tell(QAccessible::ObjectReorder); }),
            library.observe({P::focusedID}, [this](const auto&) { tell(QAccessible::Focus); }),
            library.observe({P::checkedIDs, P::ratings},
                            [this](const auto&) { tell(QAccessible::DescriptionChanged); })};
    }

private:
    void tell(QAccessible::Event kind) {
        if (!QAccessible::isActive() || !m_view.isVisible()) return;
        QAccessibleEvent event{&m_view, kind};
        if (kind != QAccessible::ObjectReorder) {
            const auto focused = dynamic_cast<PhotoCells&>(m_view).library().focusedIndex();
            if (!focused || !m_view.hasFocus()) return;
            event.setChild(static_cast<int>(*focused));
        }
        QAccessible::updateAccessibility(&event);
    }

    QWidget& m_view;
    std::array<Subscription, 3> m_subscriptions;
};

} // namespace

void makeCellsAccessible(QWidget& view) {
    QAccessible::installFactory(makeInterface); // a second time does nothing
    new Announcer{view};
}

} // namespace kelvara
