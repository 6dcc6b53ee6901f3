#include "sonavit/problem.h"

#include "sonavit/codes.h"
#include "sonavit/enumnames.h"
#include "sonavit/text.h"

#include <array>
#include <ostream>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr std::array<const char*, 10> kindKeys = {"platform",   "notThere", "ambiguous", "notSupported", "outOfRange",
                                                  "unreadable", "noAnswer", "wouldWait", "ended",        "internal"};
}

Problem Problem::ofCall(std::string operation, std::string object, std::int32_t code, std::string sentence)
{
    Problem problem(Kind::platform, std::move(operation), std::move(object), std::move(sentence));
    problem.m_code = code;
    if (problem.m_sentence.empty())
        problem.m_sentence = problem.m_operation + " failed: " + reasonText(code);
    return problem;
}

Problem::Problem(Kind kind, std::string operation, std::string object, std::string sentence)
    : m_kind(kind),
      m_operation(std::move(operation)),
      m_object(std::move(object)),
      m_sentence(std::move(sentence))
{
}

std::string Problem::codeText() const
{
    return m_code == 0 ? std::string() : text::hexCode(static_cast<std::uint32_t>(m_code));
}

bool operator==(const Problem& left, const Problem& right) noexcept
{
    return left.m_kind == right.m_kind && left.m_code == right.m_code && left.m_operation == right.m_operation &&
           left.m_object == right.m_object && left.m_sentence == right.m_sentence;
}

std::ostream& operator<<(std::ostream& out, const Problem& problem)
{
    return out << problem.sentence();
}

const char* keyOf(Problem::Kind kind) noexcept
{
    return nameOf(kindKeys, kind, unknownKey);
}

std::ostream& operator<<(std::ostream& out, Problem::Kind kind)
{
    return out << keyOf(kind);
}

std::string reasonText(std::int32_t code)
{
    const auto number = static_cast<std::uint32_t>(code);
    const KnownCode* const known = knownCode(number);
    // A small number may mean anything; the wave functions have their own.
    return known == nullptr || number <= lastWaveCode ? text::hexCode(number)
                                                      : text::hexCode(number) + ", " + known->words;
}
}
}
