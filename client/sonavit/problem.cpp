#include "sonavit/problem.h"

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

struct KnownCode
{
    std::uint32_t code;
    const char* words;
};

constexpr std::array<KnownCode, 17> knownCodes = {{{0x80004001, "not implemented"},
                                                   {0x80004002, "no such interface"},
                                                   {0x80004003, "success without a result"},
                                                   {0x80004005, "unspecified error"},
                                                   {0x8000FFFF, "unexpected failure"},
                                                   {0x800401F0, "COM is not initialized"},
                                                   {0x80040154, "class not registered"},
                                                   {0x80020005, "a value of another type"},
                                                   {0x80070005, "access denied"},
                                                   {0x8007000D, "invalid data"},
                                                   {0x8007000E, "out of memory"},
                                                   {0x80070057, "invalid argument"},
                                                   {0x80070490, "not found"},
                                                   {0x800706BA, "the audio service is not available"},
                                                   {0x88890004, "the device is no longer present"},
                                                   {0x88890010, "the audio service is not running"},
                                                   {0xE000020B, "no such device instance"}}};
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
    for (const KnownCode& known : knownCodes)
    {
        if (known.code == number)
            return text::hexCode(number) + ", " + known.words;
    }
    return text::hexCode(number);
}
}
}
