/// @file
/// Runs a runtime function as a watched call of the current machine, if there is one.
#pragma once

#include "simulator/core/answeringscope.h"
#include "simulator/core/state.h"
#include "simulator/core/watchedcall.h"

#include <memory>
#include <string>

namespace sim
{
/// One call of a runtime function. @p body receives the machine, null if there is none.
template<class... Values, class Body, class... Arguments>
HRESULT runtimeCall(const char* function, const Outputs<Values...>& outputs, const Body& body,
                    const Arguments&... arguments)
{
    const AnsweringScope answering(true);
    const std::shared_ptr<State> state = currentState();
    if (state != nullptr)
        return watchedCall(
            *state, function, {}, nullptr, outputs, [&] { return body(state); }, arguments...);
    if (!outputs.areThere())
        return E_POINTER;
    outputs.clear(false);
    return body(state);
}

/// One call of a function that has no result and cannot fail. It is recorded and meets no fault rule.
template<class Body, class... Arguments>
void runtimeNotice(const char* function, const Body& body, const Arguments&... arguments)
{
    const AnsweringScope answering(true);
    const std::shared_ptr<State> state = currentState();
    body(state.get());
    if (state == nullptr || !state->journal.recording())
        return;
    JournalEntry entry;
    entry.operation = function;
    entry.arguments = {argumentText(arguments)...};
    state->journal.end(state->journal.begin(std::move(entry)), CallEnd::returned, S_OK);
}
}
