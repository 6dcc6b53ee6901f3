#include "client/diagnosing/explainfacts.h"

#include "simulator/machine/propertykeys.h"

#include <gtest/gtest.h>

namespace
{
using sonavit::diagnosing::deviceWords;
using sonavit::diagnosing::listed;
using sonavit::diagnosing::named;
using sonavit::diagnosing::sentenceFrom;

TEST(ExplainedSentence, BeginsWithACapital)
{
    EXPECT_EQ("The connector 0x00010000", sentenceFrom("the connector 0x00010000"));
    EXPECT_EQ("A", sentenceFrom("a"));
    EXPECT_EQ("Z", sentenceFrom("z"));
}

TEST(ExplainedSentence, StaysIfItBeginsWithNoSmallLetter)
{
    for (const char* const text : {"", "\"Line Out\"", "Microphone", "{1}", "`", "\xC3\xA4"})
        EXPECT_EQ(text, sentenceFrom(text));
}

TEST(ExplainedList, NamesAllUntilThereAreTooMany)
{
    EXPECT_EQ("a, b, c, d, e and f", listed({"a", "b", "c", "d", "e", "f"}));
    EXPECT_EQ("a, b, c, d, e and 2 more", listed({"a", "b", "c", "d", "e", "f", "g"}));
}

TEST(ExplainedName, IsQuotedOnOneLine)
{
    EXPECT_EQ("\"Line\xEF\xBF\xBDOut\"", named("Line\x01Out"));
}

TEST(ExplainedDevice, IsTheAdapterOrTheEndpointWithItsOwnName)
{
    sim::Device device;
    device.id = "{2}.some adapter";
    EXPECT_EQ("an adapter without a name", deviceWords(device));
    device.properties = {{sim::keys::friendlyName, sim::PropertyValue::ofText("Card")},
                         {sim::keys::deviceDescription, sim::PropertyValue::ofText("Speakers")}};
    EXPECT_EQ("the adapter \"Card\"", deviceWords(device));
    device.id = "{0.0.0.00000000}.{00000000-0000-0000-0000-000000000001}";
    EXPECT_EQ("the endpoint \"Speakers\"", deviceWords(device));
    device.properties = {{sim::keys::deviceDescription, sim::PropertyValue::ofText("")}};
    EXPECT_EQ("an endpoint without a name", deviceWords(device));
}
}
