/// @file
/// What an operation of the client layer answers, in pieces, and what it says that it could not read.
#pragma once

#include "sonavit/client.h"
#include "tests/faults/client/facts.h"

#include <string>
#include <vector>

namespace faults::client
{
struct Answer
{
    Facts facts;
    std::vector<sonavit::Problem> problems; ///< all, of whatever part of the answer
    bool explainsItself = false;            ///< whether words say that a call may have failed
    bool hasValue = true;                   ///< whether every result was a value
    std::vector<std::string> complaints;    ///< what no answer may be, whatever fails

    void add(const sonavit::Snapshot& snapshot);
    void add(const sonavit::EndpointId& endpoint, const sonavit::Volume& volume);
    void add(const sonavit::Control& control);
    void add(const sonavit::Selector& selector);
    void add(const sonavit::Hardware& hardware);
    void add(const sonavit::Graph& graph);
    void add(const sonavit::Problem& problem) { problems.push_back(problem); }

    template<class T>
    void add(const std::vector<T>& values)
    {
        for (const T& value : values)
            add(value);
    }

    /// Its problems alone.
    void addProblems(const sonavit::Snapshot& snapshot);

    /// The value, or the problem that there is in its place.
    template<class T>
    void add(const sonavit::Result<T>& result)
    {
        if (requireValue(result))
            add(*result);
    }

    void add(const sonavit::EndpointId& endpoint, const sonavit::Result<sonavit::Volume>& result)
    {
        if (requireValue(result))
            add(endpoint, *result);
    }

    /// Whether @p result is a value; a problem is noted.
    template<class T>
    bool requireValue(const sonavit::Result<T>& result)
    {
        if (result)
            return true;
        hasValue = false;
        problems.push_back(result.problem());
        return false;
    }

private:
    void add(const sonavit::Card& card);
    void add(const sonavit::Endpoint& endpoint);
    void add(const std::string& prefix, const sonavit::Level& level);
};
}
