#include "sonavit/namesearch.h"

#include "sonavit/text.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
/// Candidates that a sentence lists; it counts the others.
constexpr std::size_t mostCandidates = 6;

/// The code of a problem that no platform call explains.
constexpr std::int32_t noCode = 0;

using IsMatch = std::function<bool(const std::string&)>;

std::vector<std::size_t> matches(const std::vector<NameSearch::Names>& things, const IsMatch& isMatch)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < things.size(); ++i)
    {
        if (std::any_of(things[i].whole.begin(), things[i].whole.end(), isMatch))
            found.push_back(i);
    }
    return found;
}
}

NameSearch::NameSearch(std::string operation, std::string noun, std::string_view name)
    : m_operation(std::move(operation)),
      m_noun(std::move(noun)),
      m_name(name)
{
}

Result<std::size_t> NameSearch::in(const std::vector<Names>& things) const
{
    if (m_name.empty())
        return problem(Problem::Kind::notThere, "the name of the " + m_noun + " is empty");
    const std::string lower = text::lowerCase(m_name);
    const IsMatch tests[] = {[&](const std::string& name) { return name == m_name; },
                             [&](const std::string& name) { return text::equalNoCase(name, m_name); },
                             [&](const std::string& name)
                             { return text::lowerCase(name).find(lower) != std::string::npos; }};
    for (const IsMatch& isMatch : tests)
    {
        const std::vector<std::size_t> found = matches(things, isMatch);
        if (found.size() == 1)
            return found.front();
        if (found.size() > 1)
            return ambiguous(things, found);
    }
    return unknown(things);
}

Problem NameSearch::problem(Problem::Kind kind, std::string sentence) const
{
    return Problem(kind, m_operation, std::string(m_name), std::move(sentence));
}

Problem NameSearch::ambiguous(const std::vector<Names>& things, const std::vector<std::size_t>& found) const
{
    std::vector<std::string> titles;
    for (std::size_t i = 0; i < std::min(found.size(), mostCandidates); ++i)
        titles.push_back(things[found[i]].title);
    if (found.size() > mostCandidates)
        titles.push_back(std::to_string(found.size() - mostCandidates) + " more");
    return problem(Problem::Kind::ambiguous, text::quoted(m_name) + " matches " + text::counted(found.size(), m_noun) +
                                                 ": " + text::enumeration(titles));
}

/// The thing may be one whose names cannot be read.
Problem NameSearch::unknown(const std::vector<Names>& things) const
{
    const auto isUnreadable = [](const Names& thing) { return thing.failure.has_value(); };
    const auto unreadable = std::find_if(things.begin(), things.end(), isUnreadable);
    if (unreadable == things.end())
        return problem(Problem::Kind::notThere, "there is no " + m_noun + " " + text::quoted(m_name));
    const auto count = static_cast<std::size_t>(std::count_if(things.begin(), things.end(), isUnreadable));
    const Problem& failure = *unreadable->failure;
    const std::string reason = failure.code() == noCode ? failure.sentence() : reasonText(failure.code());
    return Problem::ofCall(failure.operation(), failure.object(), failure.code(),
                           "the " + m_noun + " " + text::quoted(m_name) +
                               " cannot be found, as the system fails to report the name of " +
                               text::counted(count, m_noun) + ": " + reason);
}
}
}
