#include "suites.h"
#include "texts.h"

#include <algorithm>
#include <string>

namespace bench
{
namespace
{
const char* units(const std::u16string& text)
{
    return reinterpret_cast<const char*>(text.data());
}

const char* units(const qor::String& text)
{
    return reinterpret_cast<const char*>(text.getUCS2Buffer());
}

/// Copies a string, and destroys the copy.
template<class Text>
Comparisons::Work copying(const Text& text)
{
    return [text](benchmark::State& state)
    {
        for (auto _ : state)
        {
            const Text copy(text);
            benchmark::DoNotOptimize(units(copy));
        }
    };
}

/// Assigns two strings of the same length in turn.
template<class Text>
Comparisons::Work assigning(const Text& first, const Text& second)
{
    return [first, second](benchmark::State& state)
    {
        Text target(first);
        for (auto _ : state)
        {
            target = second;
            benchmark::DoNotOptimize(units(target));
            target = first;
            benchmark::DoNotOptimize(units(target));
        }
    };
}

template<class Text>
bool areEqual(const Text& left, const Text& right)
{
    return left == right;
}

int compareNoCase(const qor::String& left, const qor::String& right)
{
    return qor::String::compareNoCase(left, right);
}

char16_t folded(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

/// The usual way to write this comparison, which the standard library does not have.
int compareNoCase(const std::u16string& left, const std::u16string& right)
{
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i)
    {
        const char16_t a = folded(left[i]);
        const char16_t b = folded(right[i]);
        if (a != b)
            return a < b ? -1 : 1;
    }
    return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
}

/// Compares two strings whose content the compiler does not know.
template<class Text, class Result>
Comparisons::Work comparing(Result (*compare)(const Text&, const Text&), Text left, Text right, Result expected)
{
    return [=](benchmark::State& state)
    {
        if (compare(left, right) != expected)
            state.SkipWithError("wrong answer");
        const Text* a = &left;
        const Text* b = &right;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(a);
            benchmark::DoNotOptimize(b);
            benchmark::DoNotOptimize(compare(*a, *b));
        }
    };
}

void addPair(Comparisons& comparisons, const std::string& difference, const std::u16string& left,
             const std::u16string& right, bool equal, int order)
{
    const qor::String ourLeft = ownText(left);
    const qor::String ourRight = ownText(right);
    comparisons.add("text: ==, " + difference, comparing(areEqual<qor::String>, ourLeft, ourRight, equal),
                    "std::u16string", comparing(areEqual<std::u16string>, left, right, equal));
    comparisons.add("text: without case, " + difference,
                    comparing<qor::String, int>(compareNoCase, ourLeft, ourRight, order), "loop over std::u16string",
                    comparing<std::u16string, int>(compareNoCase, left, right, order));
}
}

void addTextCopies(Comparisons& comparisons)
{
    const std::u16string first = endpointId(1);
    const std::u16string second = endpointId(2);
    comparisons.add("text: copy", copying(ownText(first)), "std::u16string", copying(first));
    comparisons.add("text: assign twice", assigning(ownText(first), ownText(second)), "std::u16string",
                    assigning(first, second));
}

void addTextComparisons(Comparisons& comparisons)
{
    const std::u16string text = endpointId(1);
    addPair(comparisons, "equal", text, text, true, 0);
    addPair(comparisons, "other case", text, capitals(text), false, 0);
    addPair(comparisons, "other end", text, endpointId(2), false, -1);
}
}
