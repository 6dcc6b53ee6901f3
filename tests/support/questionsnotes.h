/// @file
/// How the examiner writes down answers.
#pragma once

#include "platform/coreaudio.h"
#include "tests/simulator/held.h"
#include "tests/support/questions.h"

#include <optional>
#include <string>
#include <type_traits>
#include <unordered_set>

namespace support
{
/// The values as text. Numbers are exact.
template<class Number, std::enable_if_t<std::is_integral_v<Number> || std::is_enum_v<Number>, int> = 0>
std::string answerText(Number value)
{
    return std::to_string(static_cast<long long>(value));
}
std::string answerText(float value);
std::string answerText(const GUID& value);
std::string answerText(const PROPERTYKEY& value);
std::string answerText(const PROPVARIANT& value);
std::string answerText(const KSJACK_DESCRIPTION& value);
std::string answerText(const KSJACK_DESCRIPTION2& value);
std::string answerText(const WAVEFORMATEX& value);
std::string answerText(const std::string& value);
/// Of what has a reason of its own not to be compared; says only that it is there.
std::string answerText(const void* object);

/// "a(b, c)".
std::string callText(const std::string& operation, const std::string& first, const std::string& second = {},
                     const std::string& third = {});

/// Notes questions and answers.
class Notes
{
public:
    Notes() = default;
    Notes(const Notes&) = delete;
    Notes& operator=(const Notes&) = delete;

    /// @param value what the call has stored; it is read if the call has succeeded
    /// @return whether it has
    template<class T>
    bool add(const std::string& call, const std::string& object, HRESULT result, const T& value)
    {
        write(call, object, result, SUCCEEDED(result) ? answerText(value) : std::string());
        return SUCCEEDED(result);
    }

    /// The same for a string, whose task memory is freed.
    std::optional<std::string> addText(const std::string& call, const std::string& object, HRESULT result,
                                       const LPWSTR& text);

    /// The same for an object, which the transcript does not describe further.
    template<class I>
    bool addObject(const std::string& call, const std::string& object, HRESULT result, const bench::Held<I>& stored)
    {
        add(call, object, result, static_cast<const void*>(stored.get()));
        return SUCCEEDED(result) && stored.get() != nullptr;
    }

    /// Whether the object is met for the first time.
    bool isNew(const std::string& object) { return m_visited.insert(object).second; }
    bool knows(const std::string& object) const { return m_visited.count(object) > 0; }

    Transcript& transcript() { return m_transcript; }

private:
    void write(const std::string& call, const std::string& object, HRESULT result, const std::string& value);

    Transcript m_transcript;
    std::unordered_set<std::string> m_visited;
};

/// Drivers may report absurd numbers; the examiner asks so many times.
UINT believable(UINT count);
}
