#pragma once

#include <cassert>
#include <utility>
#include <variant>

namespace kelvara {

/// A failure on its way into a `Result`: `return Failure{CopyError::sizeMismatch};`
template <typename E> struct Failure { E error; };
template <typename E> Failure(E) -> Failure<E>;

/// Either a value or the typed reason why there is none.
template <typename T, typename E> class [[nodiscard]] Result {
public:
    Result(T value) : m_state{std::in_place_index<0>, std::move(value)} {}
    template <typename F> Result(Failure<F> failure)
        : m_state{std::in_place_index<1>, std::move(failure.error)} {}

    [[nodiscard]] bool hasValue() const { return m_state.index() == 0; }
    explicit operator bool() const { return hasValue(); }

    /// Only where `hasValue()`.
    T& value() & { return assert(hasValue()), *std::get_if<0>(&m_state); }
    const T& value() const& { return assert(hasValue()), *std::get_if<0>(&m_state); }
    T&& value() && { return assert(hasValue()), std::move(*std::get_if<0>(&m_state)); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

    /// Only where not `hasValue()`.
    const E& error() const { return assert(!hasValue()), *std::get_if<1>(&m_state); }

private:
    std::variant<T, E> m_state;
};

/// An operation that gives nothing back but can fail.
template <typename E> class [[nodiscard]] Result<void, E> {
public:
    Result() = default;
    template <typename F> Result(Failure<F> failure)
        : m_state{std::in_place_index<1>, std::move(failure.error)} {}

    [[nodiscard]] bool hasValue() const { return m_state.index() == 0; }
    explicit operator bool() const { return hasValue(); }

    const E& error() const { return assert(!hasValue()), *std::get_if<1>(&m_state); }

private:
    std::variant<std::monostate, E> m_state;
};

} // namespace kelvara
