#pragma once

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QWidget>

namespace kelvara {

/// What assistive tools see of something that a list paints and that is no widget: a leaf below that list.
class AccessibleListItem : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    /// `list` outlives it.
    explicit AccessibleListItem(QWidget& list) : m_list{list} {}

    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QWindow* window() const override { return m_list.window()->windowHandle(); }
    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(&m_list);
    }
    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString&) override {}
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

private:
    QWidget& m_list;
};

} // namespace kelvara
