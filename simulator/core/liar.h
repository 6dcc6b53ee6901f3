/// @file
/// Replaces what a call has stored by what a lie says.
#pragma once

#include "simulator/core/state.h"
#include "simulator/lie.h"

#include <string>
#include <type_traits>

namespace sim
{
/// Tells a lie for one call. What it replaces is freed or released, unseen by journal and fault plan.
class Liar
{
public:
    /// @param operation of the call; it and @p object live as long as the liar
    /// @param object of the call
    Liar(const Lie& lie, const State& state, const char* operation, const std::string& object)
        : m_lie(lie),
          m_state(state),
          m_operation(operation),
          m_object(object)
    {
    }

    template<class Value>
    void tell(Value& value) const
    {
        if constexpr (std::is_same_v<Value, LPWSTR>)
            tellText(value);
        else if constexpr (std::is_same_v<Value, PROPVARIANT>)
            tellVariant(value);
        else if constexpr (std::is_integral_v<Value> || std::is_enum_v<Value>)
            value = m_lie.m_number ? static_cast<Value>(*m_lie.m_number) : value;
        else if constexpr (isInterface<Value>)
            value = static_cast<Value>(objectFor(value));
    }

private:
    /// Whether it is a pointer to an object: to an interface, or without type, as Activate stores it.
    template<class Value>
    static constexpr bool isInterface = std::is_same_v<Value, void*> ||
                                        (std::is_pointer_v<Value> && std::is_convertible_v<Value, IUnknown*>);

    void tellText(LPWSTR& text) const;
    void tellVariant(PROPVARIANT& value) const;
    void* objectFor(void* truth) const;

    const Lie& m_lie;
    const State& m_state;
    const char* const m_operation;
    const std::string& m_object;
};
}
