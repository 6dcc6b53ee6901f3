#include "qor/logging.h"

#include "qor/qorvalue.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

using qor::LoggerStream;
using qor::String;

namespace
{
TEST(LoggerStreamPlus, AddsTheDecimalTextOfAnInt)
{
    LoggerStream stream;

    stream + 168 + -7 + std::numeric_limits<int>::min();

    EXPECT_EQ(String("168-7-2147483648"), stream);
}

TEST(LoggerStreamPlus, AddsTheDecimalTextOfAnUnsignedInt)
{
    LoggerStream stream;

    stream + 4294967295u;

    EXPECT_EQ(String("4294967295"), stream);
}

TEST(LoggerStreamPlus, AddsTheDecimalTextOfA64BitNumber)
{
    LoggerStream stream;

    (stream + std::numeric_limits<unsigned __int64>::max()).append(" ");
    stream + static_cast<unsigned __int64>(0);

    EXPECT_EQ(String("18446744073709551615 0"), stream);
}

TEST(LoggerStreamPlus, PrintsASignExtendedResultCodeAsAVeryLargeNumber)
{
    const int changedMode = static_cast<int>(0x80010106u);
    LoggerStream stream;

    stream.append("CoInitialize returns ");
    stream + static_cast<unsigned __int64>(static_cast<__int64>(changedMode));

    EXPECT_EQ(String("CoInitialize returns 18446744071562133766"), stream);
}

TEST(LoggerStreamPlus, ReturnsTheStreamItself)
{
    LoggerStream stream;

    EXPECT_EQ(&stream, &(stream + 1));
    EXPECT_EQ(&stream, &(stream + 1u));
    EXPECT_EQ(&stream, &(stream + static_cast<unsigned __int64>(1)));
}

TEST(LoggerStreamOfALine, StartsWithTheLineAndABlankAndHasRoomForAMessage)
{
    LoggerStream stream(168);
    const unsigned short* const buffer = stream.getUCS2Buffer();
    EXPECT_EQ(String("168 "), stream);

    stream.append(String("OpenPropertyStore returns ")).append("0x80070005");

    EXPECT_EQ(String("168 OpenPropertyStore returns 0x80070005"), stream);
    EXPECT_EQ(buffer, stream.getUCS2Buffer());
    EXPECT_EQ(String("-2147483648 "), LoggerStream(std::numeric_limits<int>::min()));
}

TEST(LoggerStreamPlus, AsTheFirstOperationMakesRoomForAMessage)
{
    LoggerStream stream;

    stream + 168;
    const unsigned short* const buffer = stream.getUCS2Buffer();
    for (int i = 0; i < 10; ++i)
        (stream + 4294967295u).append(" ");

    EXPECT_EQ(buffer, stream.getUCS2Buffer());
    EXPECT_EQ(113u, stream.size());
}

TEST(LoggerStreamText, OffersEveryOperationOfATextDirectly)
{
    const unsigned short ucs2[] = {'c', 0};
    LoggerStream stream;

    stream = "a";
    stream.append("b").append(String("b"));
    stream += String("b");
    EXPECT_EQ(String("abbb"), stream);
    EXPECT_EQ(4u, stream.size());

    stream = ucs2;
    EXPECT_EQ(String("c"), stream);

    stream = String("d");
    EXPECT_EQ(String("d"), stream);

    stream.clear();
    EXPECT_EQ(String(), stream);
}

TEST(LoggerStreamText, IsAText)
{
    EXPECT_TRUE((std::is_base_of_v<String, LoggerStream>));
}

TEST(LoggerStreamText, CopiesIndependently)
{
    LoggerStream stream;
    stream.append("a");

    LoggerStream copy(stream);
    copy.append("b");
    LoggerStream assigned;
    assigned = copy;

    EXPECT_EQ(String("a"), stream);
    EXPECT_EQ(String("ab"), copy);
    EXPECT_EQ(String("ab"), assigned);
}
}
