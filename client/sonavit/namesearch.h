/// @file
/// How people name things: by an id, a name, or a part of one. Not a public header.
#pragma once

#include "sonavit/problem.h"
#include "sonavit/result.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// The search for one thing by its name.
class NameSearch
{
public:
    /// What a thing can be called by.
    struct Names
    {
        std::vector<std::string> whole; ///< ids first
        std::string title;              ///< how it is shown to the user
        std::optional<Problem> failure; ///< why there may be more names than these
    };

    /// Columns of a name among the candidates that a sentence lists.
    static constexpr std::size_t longestCandidate = 60;

    /// @param operation of the layer, for problems: "endpointNamed"
    /// @param noun what is searched, for problems: "endpoint"
    /// @param name must outlive the search
    NameSearch(std::string operation, std::string noun, std::string_view name);

    /// The position of the thing that is meant. A whole name goes before a part of one, so that "Speakers" can be named
    /// although there are "Rear Speakers"; upper and lower case are alike.
    /// @return Problem::Kind::notThere if there is none, Kind::ambiguous with the candidates if there are several,
    /// Kind::platform if it may be one whose names cannot be read
    Result<std::size_t> in(const std::vector<Names>& things) const;

private:
    Problem problem(Problem::Kind kind, std::string sentence) const;
    Problem ambiguous(const std::vector<Names>& things, const std::vector<std::size_t>& found) const;
    Problem unknown(const std::vector<Names>& things) const;

    std::string m_operation;
    std::string m_noun;
    std::string_view m_name;
};
}
}
