#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "tests/support/pace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

namespace
{
/// What is written for a property with @p value, which reading gives back.
std::string writtenProperty(const sim::PropertyValue& value)
{
    sim::Machine machine;
    machine.name = "value";
    machine.adapters.emplace_back().id = "A";
    machine.adapters.front().properties = {{sim::keys::formFactor, value}};
    const std::string text = sim::writeMachine(machine);
    EXPECT_TRUE(machine == sim::readMachine(text, "value.json")) << text;
    const std::string start = "\"formFactor\": ";
    const std::size_t begin = text.find(start) + start.size();
    return text.substr(begin, text.find("}}", begin) - begin);
}

TEST(MachineFileWrite, KeepsTheSignAndAllBitsOfWholeNumbers)
{
    const auto written = [](std::uint64_t number, VARTYPE tag)
    { return writtenProperty(sim::PropertyValue::ofNumber(number, tag)); };

    EXPECT_EQ("{\"number\": -1, \"tag\": \"VT_I8\"", written(UINT64_MAX, VT_I8));
    EXPECT_EQ("{\"number\": -9223372036854775808, \"tag\": \"VT_I8\"", written(0x8000000000000000u, VT_I8));
    EXPECT_EQ("{\"number\": 9223372036854775807, \"tag\": \"VT_I8\"", written(0x7FFFFFFFFFFFFFFFu, VT_I8));
    EXPECT_EQ("{\"number\": 18446744073709551615, \"tag\": \"VT_FILETIME\"", written(UINT64_MAX, VT_FILETIME));
    EXPECT_EQ("{\"number\": -128, \"tag\": \"VT_I1\"", written(0x80, VT_I1));
    EXPECT_EQ("{\"number\": 256, \"tag\": \"VT_I1\"", written(256, VT_I1)); // more than its bits
    EXPECT_EQ("{\"number\": -2, \"tag\": \"VT_I2\"", written(0xFFFE, VT_I2));
    EXPECT_EQ("{\"number\": -2147483648, \"tag\": \"VT_I4\"", written(0x80000000, VT_I4));
    EXPECT_EQ("{\"number\": 65534, \"tag\": \"VT_I4\"", written(0xFFFE, VT_I4));
    EXPECT_EQ("{\"number\": -1, \"tag\": \"VT_INT\"", written(0xFFFFFFFF, VT_INT));
    EXPECT_EQ("{\"number\": 4294967295, \"tag\": \"VT_UINT\"", written(0xFFFFFFFF, VT_UINT));
}

TEST(MachineFileWrite, KeepsRealNumbersOfBothPrecisionsExactly)
{
    const auto writtenLong = [](double value) { return writtenProperty(sim::PropertyValue::ofLongReal(value)); };
    const auto written = [](float value) { return writtenProperty(sim::PropertyValue::ofReal(value)); };
    double nan = 0.0;
    const std::uint64_t bits = 0x7FF8000000000007u;
    std::memcpy(&nan, &bits, sizeof nan);

    EXPECT_EQ("{\"longReal\": 0.1", writtenLong(0.1));
    EXPECT_EQ("{\"longReal\": 0.30000000000000004", writtenLong(0.1 + 0.2));
    EXPECT_EQ("{\"longReal\": -0.0", writtenLong(-0.0));
    EXPECT_EQ("{\"longReal\": 5e-324", writtenLong(5e-324));
    EXPECT_EQ("{\"longReal\": 1.7976931348623157e+308", writtenLong(1.7976931348623157e308));
    EXPECT_EQ("{\"longReal\": \"0x7FF0000000000000\"", writtenLong(INFINITY));
    EXPECT_EQ("{\"longReal\": \"0x7FF8000000000007\"", writtenLong(nan));
    EXPECT_EQ("{\"real\": \"0xFF800000\"", written(-INFINITY));
    EXPECT_EQ("{\"real\": \"0x7FC00000\"", written(std::abs(NAN)));
    EXPECT_EQ("{\"real\": 0.1", written(0.1f));
    EXPECT_EQ("{\"real\": -0.0", written(-0.0f));
}

TEST(MachineFileRead, KeepsTheSignOfZeroAndTheValueOfAnyDecimal)
{
    const auto read = [](const std::string& written)
    {
        const sim::Machine machine = sim::readMachine(
            R"({"name": "m", "adapters": [{"id": "A", "properties": {"formFactor": {"longReal": )" + written + "}}}]}",
            "m.json");
        return machine.adapters.front().properties.front().value.longReal;
    };

    EXPECT_TRUE(std::signbit(read("-0.0")));
    EXPECT_EQ(9007199254740992.0, read("9007199254740993"));
    EXPECT_EQ(1e22, read("10000000000000000000000"));
    EXPECT_EQ(-2.5, read("\"0xC004000000000000\""));
}

TEST(MachineFileWrite, KeepsNarrowTextsByteForByte)
{
    std::string all;
    for (int byte = 1; byte < 256; ++byte)
        all += static_cast<char>(static_cast<unsigned char>(byte));

    EXPECT_EQ("{\"narrowText\": \"Realtek\"", writtenProperty(sim::PropertyValue::ofNarrowText("Realtek")));
    EXPECT_EQ("{\"narrowText\": \"\xC3\xA4\"", writtenProperty(sim::PropertyValue::ofNarrowText("\xE4")));
    EXPECT_EQ("{\"narrowText\": null", writtenProperty(sim::PropertyValue::ofNarrowText(std::nullopt)));
    EXPECT_NE("", writtenProperty(sim::PropertyValue::ofNarrowText(all)));
}

TEST(MachineFileWrite, KeepsEveryTag)
{
    sim::Machine machine;
    machine.name = "tags";
    machine.adapters.emplace_back().id = "A";
    for (DWORD tag = 0; tag <= 0xFFFF; tag += support::cases(1, 17))
        machine.adapters.front().properties.push_back({{GUID{}, tag}, sim::PropertyValue::ofTag(VARTYPE(tag))});

    const std::string text = sim::writeMachine(machine);

    EXPECT_TRUE(machine == sim::readMachine(text, "tags.json"));
    EXPECT_EQ("{\"tag\": \"0x1003\"", writtenProperty(sim::PropertyValue::ofTag(VT_VECTOR | VT_I4)));
}
}
