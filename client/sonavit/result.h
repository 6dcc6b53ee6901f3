/// @file
/// A value, or the reason why there is none.
#pragma once

#include "sonavit/problem.h"

#include <cstdint>
#include <stdexcept>
#include <utility>
#include <variant>

namespace sonavit
{
inline namespace v1
{
/// Identifies one change that this program made; the events that follow from it carry it. 0 for none.
using ChangeToken = std::uint64_t;

/// A value, or a Problem. Asking for the one that is not there throws std::logic_error.
///
///     if (const sonavit::Result<sonavit::Volume> volume = audio.setVolume(id, sonavit::Percent(40)))
///         std::cout << volume->sentence();
///     else
///         std::cout << volume.problem().sentence();
///
/// What was moved from still has the value or the problem, in its moved-from state. Threads may read it at the same
/// time.
template<class T>
class [[nodiscard]] Result
{
public:
    // Implicit on purpose: an operation returns either.
    // NOLINTBEGIN(google-explicit-constructor)
    Result(T value, ChangeToken token = 0) : m_content(std::move(value)), m_token(token) {}
    Result(Problem problem, ChangeToken token = 0) : m_content(std::move(problem)), m_token(token) {}
    // NOLINTEND(google-explicit-constructor)

    /// Whether there is a value.
    explicit operator bool() const noexcept { return std::holds_alternative<T>(m_content); }

    const T& value() const& { return require(); }
    T& value() & { return const_cast<T&>(require()); }
    T value() && { return std::move(const_cast<T&>(require())); }
    const T& operator*() const& { return require(); }
    T& operator*() & { return const_cast<T&>(require()); }
    T operator*() && { return std::move(const_cast<T&>(require())); }
    const T* operator->() const { return &require(); }
    T* operator->() { return &const_cast<T&>(require()); }

    const Problem& problem() const
    {
        const Problem* const problem = std::get_if<Problem>(&m_content);
        if (problem == nullptr)
            throw std::logic_error("sonavit::Result: the operation succeeded, so there is no problem");
        return *problem;
    }

    /// The change that the operation made, as events report it; 0 if it made none.
    ChangeToken token() const noexcept { return m_token; }

private:
    const T& require() const
    {
        const T* const value = std::get_if<T>(&m_content);
        if (value == nullptr)
            throw std::logic_error("sonavit::Result: " + std::get<Problem>(m_content).sentence());
        return *value;
    }

    std::variant<T, Problem> m_content;
    ChangeToken m_token = 0;
};

/// Stands for the value of an operation that returns none.
struct Done
{
    friend constexpr bool operator==(Done, Done) noexcept { return true; }
    friend constexpr bool operator!=(Done, Done) noexcept { return false; }
};
}
}
