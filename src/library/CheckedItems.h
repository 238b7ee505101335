#pragma once

#include "model/PhotoItem.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace kelvara {

/// The marked items of a source, as a set of their URLs: a bit for each position in the source's list, so
/// that marking 100,000 photos copies no path.
class CheckedItems {
public:
    using Items = std::shared_ptr<const std::vector<PhotoItem>>;

    CheckedItems() = default;
    /// None of `items` marked.
    explicit CheckedItems(Items items) : m_items{std::move(items)}, m_isChecked(m_items->size()) {}

    [[nodiscard]] std::size_t size() const { return m_size; }
    /// How many of them are videos.
    [[nodiscard]] std::size_t videos() const { return m_videos; }
    [[nodiscard]] bool empty() const { return m_size == 0; }
    /// Sizes of the marked files together, in bytes.
    [[nodiscard]] std::int64_t bytes() const { return m_bytes; }

    [[nodiscard]] bool isChecked(std::size_t position) const { return m_isChecked[position]; }
    /// By position.
    [[nodiscard]] const std::vector<bool>& flags() const { return m_isChecked; }
    void setChecked(std::size_t position, bool isChecked) {
        if (m_isChecked[position] == isChecked) return;
        m_isChecked[position] = isChecked;
        const auto& item = (*m_items)[position];
        m_size = isChecked ? m_size + 1 : m_size - 1;
        m_bytes = isChecked ? m_bytes + item.fileSize : m_bytes - item.fileSize;
        if (item.kind() == MediaKind::video) m_videos = isChecked ? m_videos + 1 : m_videos - 1;
    }

    /// Goes over the URLs in the order of the source's list.
    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = FileURL;
        using difference_type = std::ptrdiff_t;
        using pointer = const FileURL*;
        using reference = const FileURL&;

        const_iterator() = default;
        const_iterator(const CheckedItems* set, std::size_t position) : m_set{set}, m_position{position} {
            skip();
        }
        reference operator*() const { return (*m_set->m_items)[m_position].url; }
        pointer operator->() const { return &**this; }
        const_iterator& operator++() {
            ++m_position;
            skip();
            return *this;
        }
        const_iterator operator++(int) {
            auto before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const const_iterator&, const const_iterator&) = default;

    private:
        void skip() {
            const auto& flags = m_set->m_isChecked;
            while (m_position < flags.size() && !flags[m_position]) ++m_position;
        }
        const CheckedItems* m_set = nullptr;
        std::size_t m_position = 0;
    };
    using iterator = const_iterator;
    using value_type = FileURL;

    [[nodiscard]] const_iterator begin() const { return {this, 0}; }
    [[nodiscard]] const_iterator end() const { return {this, m_isChecked.size()}; }

private:
    Items m_items = std::make_shared<const std::vector<PhotoItem>>();
    std::vector<bool> m_isChecked;
    std::size_t m_size = 0;
    std::size_t m_videos = 0;
    std::int64_t m_bytes = 0;
};

} // namespace kelvara
