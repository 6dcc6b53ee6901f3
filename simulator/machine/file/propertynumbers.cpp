#include "simulator/machine/file/propertynumbers.h"

#include "simulator/machine/file/codecs.h"
#include "simulator/machine/valuetext.h"

#include <cmath>
#include <cstring>
#include <string>

namespace sim
{
namespace
{
/// How many bits a whole number with that tag has if it has a sign; 0 if it has none.
unsigned signedBits(VARTYPE tag)
{
    switch (tag)
    {
    case VT_I1:
        return 8;
    case VT_I2:
        return 16;
    case VT_I4:
    case VT_INT:
        return 32;
    case VT_I8:
        return 64;
    default:
        return 0;
    }
}

/// All bits of a number of @p bits bits.
std::uint64_t maskOf(unsigned bits)
{
    return UINT64_MAX >> (64 - bits);
}

std::uint64_t readNumber(const JsonCursor& cursor, VARTYPE tag)
{
    const unsigned bits = signedBits(tag);
    if (bits != 0 && cursor.isNegative())
    {
        const std::int64_t least = -static_cast<std::int64_t>(maskOf(bits - 1)) - 1;
        return static_cast<std::uint64_t>(cursor.negativeNumber(least)) & maskOf(bits);
    }
    const std::uint64_t number = cursor.largeNumber();
    if (bits == 64 && number > maskOf(63))
        cursor.fail("a whole number from -9223372036854775808 to 9223372036854775807");
    return number;
}

/// With a minus if the bits are those of a negative number.
JsonValue writeNumber(const PropertyValue& value)
{
    const unsigned bits = signedBits(value.tag);
    const bool isNegative = bits != 0 && value.number > maskOf(bits - 1) && value.number <= maskOf(bits);
    const std::string digits = std::to_string(isNegative ? maskOf(bits) - value.number + 1 : value.number);
    return JsonValue::ofNumber((isNegative ? "-" : "") + digits);
}

/// Another type of the same size with the same bytes.
template<class To, class From>
To sameBytes(const From& from)
{
    static_assert(sizeof(To) == sizeof(From), "all bytes have a place");
    To to = {};
    std::memcpy(&to, &from, sizeof to);
    return to;
}

double readReal(const JsonCursor& cursor, const double&)
{
    return cursor.longReal();
}

float readReal(const JsonCursor& cursor, const float&)
{
    return cursor.real();
}

/// A number of floating point; as its bits if it is infinite or no number.
template<class Real, class Bits>
void addRealMember(FieldTable<PropertyValue>& table, const char* key, Real PropertyValue::*member)
{
    constexpr std::size_t digits = 2 * sizeof(Bits);
    const auto read = [=](const JsonCursor& cursor, PropertyValue& value)
    {
        const std::optional<std::uint64_t> bits =
            cursor.isString() ? fromHexText(cursor.string(), digits) : std::nullopt;
        if (cursor.isString() && !bits && cursor.string().compare(0, 2, "0x") == 0)
            cursor.fail(std::to_string(digits) + " hexadecimal digits behind \"0x\"");
        value.*member = bits ? sameBytes<Real>(static_cast<Bits>(*bits)) : readReal(cursor, Real());
    };
    const auto write = [=](const PropertyValue& value)
    {
        return std::isfinite(value.*member) ? JsonValue::ofNumber(realText(value.*member))
                                            : JsonValue::ofString(hexText(sameBytes<Bits>(value.*member), digits));
    };
    const auto isEqual = [=](const PropertyValue& left, const PropertyValue& right)
    {
        return std::isnan(left.*member) ? sameBytes<Bits>(left.*member) == sameBytes<Bits>(right.*member)
                                        : left.*member == right.*member;
    };
    const auto schema = [=]
    {
        const JsonValue number = JsonValue::object().add("type", JsonValue::ofString("number"));
        return JsonValue::object().add("oneOf", JsonValue::array({number, hexSchema(digits)}));
    };
    table.add({key, true, schema}, read, write, isEqual);
}
}

void addNumber(FieldTable<PropertyValue>& table)
{
    const auto read = [](const JsonCursor& cursor, PropertyValue& value)
    { value.number = readNumber(cursor, value.tag); };
    const auto isEqual = [](const PropertyValue& left, const PropertyValue& right)
    { return left.number == right.number; };
    const auto schema = []
    {
        return JsonValue::object()
            .add("type", JsonValue::ofString("integer"))
            .add("minimum", JsonValue::ofNumber("-9223372036854775808"))
            .add("maximum", JsonValue::ofNumber("18446744073709551615"));
    };
    const auto write = [](const PropertyValue& value) { return writeNumber(value); };
    table.add({"number", true, schema}, read, write, isEqual);
}

void addReal(FieldTable<PropertyValue>& table)
{
    addRealMember<float, std::uint32_t>(table, "real", &PropertyValue::real);
}

void addLongReal(FieldTable<PropertyValue>& table)
{
    addRealMember<double, std::uint64_t>(table, "longReal", &PropertyValue::longReal);
}

JsonValue hexSchema(std::size_t digits)
{
    return JsonValue::object()
        .add("type", JsonValue::ofString("string"))
        .add("pattern", JsonValue::ofString("^0x[0-9A-Fa-f]{" + std::to_string(digits) + "}$"));
}
}
