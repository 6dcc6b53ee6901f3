/// A stream of operations on strings, each of which is done to a std::u16string as well: afterwards both have the same
/// units, and all comparisons, pieces and conversions are those of plain loops over these units.
#include "qor/array.h"
#include "qor/string.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/textmodel.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace
{
using fuzz::check;

/// A text that grows by itself must end somewhere.
constexpr std::size_t longestText = 5000;

struct Pair
{
    qor::String string;
    std::u16string model;
};

using Pairs = std::array<Pair, 4>;

enum class Operation
{
    fromLatin1,
    fromUnits,
    fromUtf8,
    copied,
    moved,
    constructed,
    appendedLatin1,
    appended,
    prepended,
    reserved,
    cleared,
    shortened,
    fromNull,
    kMaxValue = fromNull
};

std::string latin1(FuzzedDataProvider& input)
{
    const std::string text = input.ConsumeRandomLengthString(64);
    return text.substr(0, text.find('\0')); // a zero ends the text
}

std::u16string units(FuzzedDataProvider& input)
{
    const std::string bytes = input.ConsumeRandomLengthString(64);
    std::u16string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) * 0x100 +
                                      static_cast<unsigned char>(bytes[i + 1]));
    return text.substr(0, text.find(u'\0'));
}

const unsigned short* bufferOf(const std::u16string& text)
{
    return reinterpret_cast<const unsigned short*>(text.c_str());
}

void change(Operation operation, Pair& target, Pair& other, FuzzedDataProvider& input)
{
    switch (operation)
    {
    case Operation::fromLatin1:
    {
        const std::string text = latin1(input);
        target.string = text.c_str();
        target.model = fuzz::widened(text);
        break;
    }
    case Operation::fromUnits:
    {
        target.model = units(input);
        target.string = bufferOf(target.model);
        break;
    }
    case Operation::fromUtf8:
    {
        const std::string text = input.ConsumeRandomLengthString(64);
        target.string = qor::String::fromUtf8(text);
        target.model = fuzz::unitsOfUtf8(text);
        break;
    }
    case Operation::copied:
        target.string = other.string;
        target.model = std::u16string(other.model);
        break;
    case Operation::moved:
        if (&target == &other)
            break;
        target.string = std::move(other.string);
        other.string = "moved";
        target.model = std::exchange(other.model, u"moved");
        break;
    case Operation::constructed:
    {
        qor::String copy(other.string);
        const qor::String taken(std::move(copy));
        target.string = taken;
        target.model = std::u16string(other.model);
        break;
    }
    case Operation::appendedLatin1:
    {
        const std::string text = latin1(input);
        target.string.append(text.c_str());
        target.model += fuzz::widened(text);
        break;
    }
    case Operation::appended:
        if (target.model.size() + other.model.size() > longestText)
            break;
        target.string += other.string;
        target.model += std::u16string(other.model);
        break;
    case Operation::prepended:
    {
        const std::string text = latin1(input);
        target.string = text.c_str() + other.string;
        target.model = fuzz::widened(text) + other.model;
        break;
    }
    case Operation::reserved:
        target.string.reserve(input.ConsumeIntegralInRange<unsigned int>(0, 500));
        break;
    case Operation::cleared:
        target.string.clear();
        target.model.clear();
        break;
    case Operation::shortened:
    {
        const auto start = input.ConsumeIntegral<unsigned int>() % 100;
        const auto length = input.ConsumeIntegral<unsigned int>();
        target.string = other.string.subString(start, length);
        target.model = start < other.model.size() ? other.model.substr(start, length) : std::u16string();
        break;
    }
    case Operation::fromNull:
        target.string = static_cast<const char*>(nullptr);
        target.string =
            qor::String(static_cast<const unsigned short*>(nullptr)).append(static_cast<const char*>(nullptr));
        target.model.clear();
        break;
    }
}

void checkUnits(const Pair& pair)
{
    check(pair.string.size() == pair.model.size(), "as many units");
    check(fuzz::unitsOf(pair.string) == pair.model, "the same units");
    check(pair.string.getUCS2Buffer()[pair.string.size()] == 0, "a zero at the end");
}

void checkComparison(const Pair& left, const Pair& right)
{
    const bool isEqual = left.model == right.model;
    const int order = fuzz::comparedNoCase(left.model, right.model);
    check((left.string == right.string) == isEqual, "==");
    check((left.string != right.string) != isEqual, "!=");
    check(qor::String::compareNoCase(left.string, right.string) == order, "compareNoCase");
    check(qor::String::equalNoCase(left.string, right.string) == (order == 0), "equalNoCase");
    if (order == 0)
        check(qor::String::hashNoCase(left.string) == qor::String::hashNoCase(right.string),
              "hashNoCase of equal keys");
}

void checkConversion(const Pair& pair)
{
    const std::string utf8 = fuzz::utf8Of(pair.model);
    check(pair.string.toUtf8() == utf8, "toUtf8");
    check(fuzz::unitsOf(qor::String::fromUtf8(utf8)) == fuzz::unitsOfUtf8(utf8), "fromUtf8");
}

void checkPieces(const Pair& text, const Pair& delimiters)
{
    const qor::Array<qor::String> pieces = text.string.tokenize(delimiters.string);
    const std::vector<std::u16string> expected = fuzz::piecesOf(text.model, delimiters.model);
    check(pieces.size() == expected.size(), "as many pieces");
    for (unsigned int i = 0; i < pieces.size(); ++i)
        check(fuzz::unitsOf(pieces[i]) == expected[i], "the same pieces");
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    Pairs pairs;
    while (input.remaining_bytes() > 0)
    {
        const auto operation = input.ConsumeEnum<Operation>();
        Pair& target = pairs[input.ConsumeIntegral<std::uint8_t>() % pairs.size()];
        Pair& other = pairs[input.ConsumeIntegral<std::uint8_t>() % pairs.size()];

        change(operation, target, other, input);

        for (const Pair& pair : pairs)
            checkUnits(pair); // of all: a change of one copy must not reach another
        checkConversion(target);
        checkComparison(target, other);
        checkComparison(other, target);
        checkPieces(target, other);
    }
    return 0;
}
