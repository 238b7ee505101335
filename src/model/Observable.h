#pragma once

#include <bitset>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace kelvara {

/// Keeps an observer told for as long as it lives. May outlive what it observes.
class Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<void> hold) : m_hold{std::move(hold)} {}

private:
    std::shared_ptr<void> m_hold;
};

/// An object whose properties can be watched one by one: an observer names the properties it reads and is
/// told once per change of any of them, after the state is whole again. One thread.
///
/// `Property` is an enumeration from 0 that ends in `count`.
template <typename Property> class Observable {
public:
    class PropertySet {
    public:
        PropertySet() = default;
        PropertySet(std::initializer_list<Property> properties) {
            for (const auto property : properties) insert(property);
        }
        void insert(Property property) { m_bits.set(static_cast<std::size_t>(property)); }
        [[nodiscard]] bool contains(Property property) const {
            return m_bits.test(static_cast<std::size_t>(property));
        }
        [[nodiscard]] bool intersects(const PropertySet& other) const {
            return (m_bits & other.m_bits).any();
        }
        [[nodiscard]] bool isEmpty() const { return m_bits.none(); }

    private:
        std::bitset<static_cast<std::size_t>(Property::count)> m_bits;
    };
    using Observer = std::function<void(const PropertySet& changed)>;

    Observable() = default;
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    /// `observer` is called after each change of one of `properties`, until the subscription is gone.
    [[nodiscard]] Subscription observe(PropertySet properties, Observer observer) {
        auto entry = std::make_shared<Entry>(Entry{properties, std::move(observer)});
        m_entries.push_back(entry);
        return Subscription{std::move(entry)};
    }

protected:
    ~Observable() = default;

    /// Holds notifications back while the state changes; the end of the outermost one sends them.
    class Change {
    public:
        explicit Change(Observable& owner) : m_owner{owner} { ++m_owner.m_depth; }
        ~Change() {
            if (m_owner.m_depth == 1) m_owner.notify();
            --m_owner.m_depth;
        }
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;

    private:
        Observable& m_owner;
    };

    void didChange(Property property) {
        const Change change{*this};
        m_changed.insert(property);
    }

    /// Stores a value and reports the change, if it is one. True when it was.
    template <typename T> bool assign(Property property, T& stored, T value) {
        if (stored == value) return false;
        const Change change{*this};
        stored = std::move(value);
        m_changed.insert(property);
        return true;
    }

private:
    struct Entry {
        PropertySet properties;
        Observer observer;
    };

    void notify() {
        // An observer may change the state again; that starts another round rather than a nested one.
        while (!m_changed.isEmpty()) {
            const auto changed = std::exchange(m_changed, {});
            const auto entries = m_entries;
            for (const auto& weak : entries) {
                if (const auto entry = weak.lock(); entry && entry->properties.intersects(changed)) {
                    entry->observer(changed);
                }
            }
        }
        std::erase_if(m_entries, [](const auto& weak) { return weak.expired(); });
    }

    std::vector<std::weak_ptr<Entry>> m_entries;
    PropertySet m_changed;
    int m_depth = 0;
};

} // namespace kelvara
