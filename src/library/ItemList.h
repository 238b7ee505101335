#pragma once

#include "model/PhotoItem.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace kelvara {

/// Some items of a source in some order: positions into the source's shared list, so that lists of 100,000
/// photos are made and passed on without copying a path.
class ItemList {
public:
    using Items = std::shared_ptr<const std::vector<PhotoItem>>;

    ItemList() = default;
    ItemList(Items items, std::vector<std::uint32_t> positions)
        : m_items{std::move(items)}, m_positions{std::move(positions)} {}

    [[nodiscard]] std::size_t size() const { return m_positions.size(); }
    [[nodiscard]] bool isEmpty() const { return m_positions.empty(); }
    [[nodiscard]] const PhotoItem& operator[](std::size_t index) const {
        return (*m_items)[m_positions[index]];
    }
    /// Where the items stand in the source's list.
    [[nodiscard]] const std::vector<std::uint32_t>& positions() const { return m_positions; }

    class Iterator {
    public:
        using value_type = PhotoItem;
        using difference_type = std::ptrdiff_t;
        Iterator() = default;
        Iterator(const ItemList* list, std::size_t index) : m_list{list}, m_index{index} {}
        const PhotoItem& operator*() const { return (*m_list)[m_index]; }
        const PhotoItem* operator->() const { return &(*m_list)[m_index]; }
        Iterator& operator++() { return ++m_index, *this; }
        Iterator operator++(int) { return {m_list, m_index++}; }
        friend bool operator==(const Iterator&, const Iterator&) = default;

    private:
        const ItemList* m_list = nullptr;
        std::size_t m_index = 0;
    };
    [[nodiscard]] Iterator begin() const { return {this, 0}; }
    [[nodiscard]] Iterator end() const { return {this, size()}; }

private:
    Items m_items = std::make_shared<const std::vector<PhotoItem>>();
    std::vector<std::uint32_t> m_positions;
};

} // namespace kelvara
