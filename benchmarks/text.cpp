#include "suites.h"
#include "texts.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

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

/// Makes a string from zero-terminated units, and destroys it.
template<class Text, class Unit>
Comparisons::Work making(const std::u16string& text)
{
    std::vector<Unit> source(text.begin(), text.end());
    source.push_back(0);
    return [source](benchmark::State& state)
    {
        const Unit* begin = source.data();
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(begin);
            const Text made(begin);
            benchmark::DoNotOptimize(units(made));
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

/// Equal sizes are judged by the C library, which compares whole registers; the operator of std::u16string compares
/// units.
bool areEqualBytes(const std::u16string& left, const std::u16string& right)
{
    return left.size() == right.size() && std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0;
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
    const std::string operation = "text: ==, " + difference;
    comparisons.add(operation, comparing(areEqual<qor::String>, ourLeft, ourRight, equal), "std::memcmp",
                    comparing(areEqualBytes, left, right, equal));
    comparisons.add(operation, comparing(areEqual<qor::String>, ourLeft, ourRight, equal), "std::u16string",
                    comparing(areEqual<std::u16string>, left, right, equal));
    comparisons.add("text: without case, " + difference,
                    comparing<qor::String, int>(compareNoCase, ourLeft, ourRight, order), "loop over std::u16string",
                    comparing<std::u16string, int>(compareNoCase, left, right, order));
}
}

void addTextMakings(Comparisons& comparisons)
{
    const auto add = [&](const std::string& text, const std::u16string& source)
    {
        comparisons.add("text: make from " + text, making<qor::String, unsigned short>(source), "std::u16string",
                        making<std::u16string, char16_t>(source));
    };
    add("55 units", endpointId(1));
    add("6 units", u"Line 1");
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
