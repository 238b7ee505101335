// What assistive tools see of PresetListView.

#include "views/AccessibleListItem.h"
#include "views/PresetListView.h"

#include <QAccessibleWidget>

#include <unordered_map>

namespace kelvara {

namespace {

/// One entry by its place in the list; a new list has new ones.
class AccessibleEntry : public AccessibleListItem {
public:
    AccessibleEntry(PresetListView& view, std::size_t index)
        : AccessibleListItem{view}, m_view{view}, m_index{index} {}

    [[nodiscard]] std::size_t index() const { return m_index; }
    [[nodiscard]] bool isValid() const override { return m_index < m_view.listLayout().entries().size(); }

    [[nodiscard]] QRect rect() const override {
        if (!isValid()) return {};
        const auto entry = m_view.entryRect(m_index);
        return {m_view.canvas().mapToGlobal(entry.topLeft()), entry.size()};
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (!isValid()) return {};
        if (kind == QAccessible::Name) return m_view.title(m_index);
        return kind == QAccessible::Description ? m_view.description(m_index) : QString{};
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) return state;
        const bool isOn = m_view.isOn(m_index);
        state.focusable = true;
        if (m_view.isHeader(m_index)) {
            state.expandable = true;
            state.expanded = isOn;
            state.collapsed = !isOn;
        } else {
            state.selectable = true;
            state.selected = isOn;
        }
        state.focused = m_view.hasFocus() && m_view.currentIndex() == m_index;
        state.offscreen = !m_view.canvas().rect().intersects(m_view.entryRect(m_index));
        return state;
    }
    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& name) override {
        if (isValid() && name == pressAction()) m_view.press(m_index);
    }

private:
    PresetListView& m_view;
    std::size_t m_index;
};

class AccessibleList : public QAccessibleWidget {
public:
    explicit AccessibleList(PresetListView& view) : QAccessibleWidget{&view, QAccessible::List} {}
    ~AccessibleList() override {
        for (const auto& [index, id] : m_ids) QAccessible::deleteAccessibleInterface(id);
    }

    [[nodiscard]] int childCount() const override {
        return static_cast<int>(view().listLayout().entries().size());
    }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) return nullptr;
        if (const auto known = m_ids.find(index); known != m_ids.end())
            return QAccessible::accessibleInterface(known->second);
        auto* entry = new AccessibleEntry{view(), static_cast<std::size_t>(index)};
        m_ids.emplace(index, QAccessible::registerAccessibleInterface(entry));
        return entry;
    }
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        const auto index = view().indexAt(view().canvas().mapFromGlobal(QPoint{x, y}));
        return index ? child(static_cast<int>(*index)) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* entry = dynamic_cast<const AccessibleEntry*>(child);
        return entry && entry->isValid() ? static_cast<int>(entry->index()) : -1;
    }
    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        const auto current = view().currentIndex();
        return current && view().hasFocus() ? child(static_cast<int>(*current)) : nullptr;
    }

private:
    [[nodiscard]] PresetListView& view() const { return *qobject_cast<PresetListView*>(widget()); }

    mutable std::unordered_map<int, QAccessible::Id> m_ids; // of the entries that were asked for
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* view = qobject_cast<PresetListView*>(object);
    return view ? new AccessibleList{*view} : nullptr;
}

} // namespace

void makePresetListsAccessible() {
    QAccessible::installFactory(makeInterface); // a second time does nothing
}

void tellAssistiveTools(PresetListView& view, QAccessible::Event event) {
    if (!QAccessible::isActive() || !view.isVisible()) return;
    QAccessibleEvent told{&view, event};
    if (event == QAccessible::Focus) {
        const auto current = view.currentIndex();
        if (!current || !view.hasFocus()) return;
        told.setChild(static_cast<int>(*current));
    }
    QAccessible::updateAccessibility(&told);
}

} // namespace kelvara
