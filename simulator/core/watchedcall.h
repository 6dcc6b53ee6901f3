/// @file
/// What every call of a user goes through: out-parameters, latency, fault plan, journal.
#pragma once

#include "simulator/core/answeringscope.h"
#include "simulator/core/argumenttext.h"
#include "simulator/core/liar.h"
#include "simulator/core/state.h"

#include <cstddef>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace sim
{
/// An out-parameter that a caller may leave out; see outputs().
template<class Value>
struct OmissibleOutput
{
    Value* value;
};

template<class Value>
OmissibleOutput<Value> omissible(Value* value)
{
    return {value};
}

/// An out-parameter with space for @p count values; see outputs().
template<class Value>
struct SeveralOutputs
{
    Value* first;
    std::size_t count;
};

template<class Value>
SeveralOutputs<Value> several(Value* first, std::size_t count)
{
    return {first, count};
}

/// Out-parameters of a call: pointers to values, or what omissible() and several() return. If one that is needed is
/// null, the call returns E_POINTER. Pointers in them are null when the work begins.
template<class... Parameters>
class Outputs
{
public:
    enum class Needed
    {
        all,
        any,
    };

    explicit Outputs(Needed needed, Parameters... parameters) : m_needed(needed), m_parameters(parameters...) {}

    bool areThere() const
    {
        const std::size_t missing =
            std::apply([](const auto&... each) { return (std::size_t{0} + ... + isMissing(each)); }, m_parameters);
        return m_needed == Needed::all ? missing == 0 : missing < sizeof...(Parameters);
    }

    /// Stores null in the pointers among them; with @p all also zero in the others.
    void clear(bool all) const
    {
        std::apply([&](const auto&... each) { (clearOne(each, all), ...); }, m_parameters);
    }

    /// Replaces what has been stored.
    void replace(const Liar& liar) const
    {
        std::apply([&](const auto&... each) { (replaceOne(each, liar), ...); }, m_parameters);
    }

private:
    template<class Value>
    static bool isMissing(Value* value)
    {
        return value == nullptr;
    }

    template<class Value>
    static bool isMissing(const OmissibleOutput<Value>&)
    {
        return false;
    }

    template<class Value>
    static bool isMissing(const SeveralOutputs<Value>& values)
    {
        return values.first == nullptr;
    }

    template<class Value>
    static void clearOne(Value* value, bool all)
    {
        if (value != nullptr && (std::is_pointer_v<Value> || all))
            *value = Value();
    }

    template<class Value>
    static void clearOne(const OmissibleOutput<Value>& output, bool all)
    {
        clearOne(output.value, all);
    }

    template<class Value>
    static void clearOne(const SeveralOutputs<Value>& values, bool all)
    {
        for (std::size_t index = 0; values.first != nullptr && index < values.count; ++index)
            clearOne(values.first + index, all);
    }

    template<class Value>
    static void replaceOne(Value* value, const Liar& liar)
    {
        if (value != nullptr)
            liar.tell(*value);
    }

    template<class Value>
    static void replaceOne(const OmissibleOutput<Value>& output, const Liar& liar)
    {
        replaceOne(output.value, liar);
    }

    template<class Value>
    static void replaceOne(const SeveralOutputs<Value>& values, const Liar& liar)
    {
        for (std::size_t index = 0; index < values.count; ++index)
            replaceOne(values.first + index, liar);
    }

    Needed m_needed;
    std::tuple<Parameters...> m_parameters;
};

template<class... Parameters>
Outputs<Parameters...> outputs(Parameters... parameters)
{
    return Outputs<Parameters...>(Outputs<Parameters...>::Needed::all, parameters...);
}

/// Out-parameters of which a caller may leave out all but one.
template<class... Parameters>
Outputs<Parameters...> optionalOutputs(Parameters... parameters)
{
    return Outputs<Parameters...>(Outputs<Parameters...>::Needed::any, parameters...);
}

/// An object of which fault rules know a finer name than the journal's, which it has in common with other objects.
class FinelyNamed
{
public:
    /// Empty: there is no such name.
    virtual std::string finerName() const { return {}; }

protected:
    ~FinelyNamed() = default;
};

/// One call from its beginning to its end. The caller keeps the strings that it passes alive for that long.
class WatchedCall
{
public:
    enum class Kind
    {
        work,
        reference, ///< an operation of IUnknown: recorded only when asked for
    };

    /// @param finer the object itself, if it may have a finer name; it is asked for it only if there is a fault rule
    WatchedCall(State& state, const char* operation, const std::string& object, Kind kind = Kind::work,
                const FinelyNamed* finer = nullptr);

    /// Whether journal or fault plan need the arguments.
    bool wantsArguments() const;
    void setArguments(std::vector<std::string> arguments);

    /// Asks the fault plan, runs its actions and begins the journal's entry.
    void begin();
    /// The planned outcome, which replaces the work; none if no fault fires.
    const std::optional<FaultRule::Outcome>& planned() const;

    /// Call and object as in a Violation, for a call that registers or unregisters a client; otherwise empty.
    const std::string& text() const { return m_text; }
    /// The index of its entry in the journal, or of the next one.
    std::size_t place() const;

    /// Ends the journal's entry with @p result, which it returns.
    HRESULT end(HRESULT result);
    /// The same for a call that has done its work: if it has succeeded, it tells the planned lies.
    template<class... Parameters>
    HRESULT end(HRESULT result, const Outputs<Parameters...>& outputs)
    {
        for (const Lie& lie : m_verdict.lies)
        {
            if (SUCCEEDED(result))
                outputs.replace(Liar(lie, m_state, m_operation, m_object));
        }
        return end(result);
    }
    /// The planned outcome as a result.
    HRESULT endAsPlanned();
    /// Ends the journal's entry as thrown and throws InjectedException.
    [[noreturn]] void raise();

private:
    void reportIfForbidden() const;

    State& m_state;
    const char* const m_operation;
    const std::string& m_object;
    const FinelyNamed* const m_finer;
    const bool m_isRecorded;
    const bool m_concernsClients; ///< it registers or unregisters one
    std::vector<std::string> m_arguments;
    FaultPlan::Verdict m_verdict;
    Journal::Place m_place;
    std::string m_text;
};

/// Runs one call: @p body does the work unless a fault fires. It may take the call as its argument.
template<class... Parameters, class Body>
HRESULT answerCall(WatchedCall& watched, const Outputs<Parameters...>& outputs, const Body& body)
{
    watched.begin();
    if (!watched.planned())
    {
        if (!outputs.areThere())
            return watched.end(E_POINTER);
        outputs.clear(false);
        if constexpr (std::is_invocable_v<Body, const WatchedCall&>)
            return watched.end(body(std::as_const(watched)), outputs);
        else
            return watched.end(body(), outputs);
    }
    if (outputs.areThere())
        outputs.clear(*watched.planned() == FaultRule::Outcome::nullSuccess);
    if (*watched.planned() == FaultRule::Outcome::thrown)
        watched.raise();
    return watched.endAsPlanned();
}

inline std::string firstArgumentText()
{
    return {};
}

template<class First, class... Others>
std::string firstArgumentText(const First& first, const Others&...)
{
    return argumentText(first);
}

/// One call of an operation of @p object (functions: an empty name), which may have a finer name.
template<class... Parameters, class Body, class... Arguments>
HRESULT watchedCall(State& state, const char* operation, const std::string& object, const FinelyNamed* finer,
                    const Outputs<Parameters...>& outputs, const Body& body, const Arguments&... arguments)
{
    const AnsweringScope answering(true);
    state.latency.spend(operation, [&] { return firstArgumentText(arguments...); });
    WatchedCall watched(state, operation, object, WatchedCall::Kind::work, finer);
    if (watched.wantsArguments())
        watched.setArguments({argumentText(arguments)...});
    return answerCall(watched, outputs, body);
}
}
