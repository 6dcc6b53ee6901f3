#include "qor/array.h"

#include "tests/foundation/supporttracked.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

using qor::Array;
using qor::String;
using support::Tracked;

namespace
{
/// Message of the SerializationFailed that the array throws when it is written under the name x.
template<class T>
std::string refusal(Array<T>& array, String& out)
{
    try
    {
        array.serializeToXML("x", out);
    }
    catch (const qor::SerializationFailed& error)
    {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(ArraySerializeToXML, WithTheNameXThrowsSerializationFailedNamingX)
{
    Array<Tracked> others;
    Array<String> texts;
    Array<unsigned int> numbers;
    String out("untouched");

    EXPECT_EQ("Serialization is not supported for: x", refusal(others, out));
    EXPECT_EQ("Serialization is not supported for: x", refusal(texts, out));
    EXPECT_EQ("Serialization is not supported for: x", refusal(numbers, out));
    EXPECT_EQ(String("untouched"), out);
}

TEST(ArrayDoSerialization, RefusesInTheSameWay)
{
    Array<unsigned int> array;
    String out;

    EXPECT_THROW(array.doSerialization("x", out), qor::SerializationFailed);
}

TEST(ArrayDeserializeFromElement, ThrowsNothingAndSaysSoOnStandardOutput)
{
    Array<unsigned int> array;
    array.append(7u);
    const qor::XmlElement element("x");
    testing::internal::CaptureStdout();

    EXPECT_NO_THROW(array.deserializeFromElement(&element));
    EXPECT_NO_THROW(array.deserializeFromElement(nullptr));

    const std::string line = "Serialization isn't support for this class!!!\n";
    EXPECT_EQ(line + line, testing::internal::GetCapturedStdout());
    ASSERT_EQ(1u, array.size());
    EXPECT_EQ(7u, array[0]);
}

TEST(ArrayInsertValueToContainer, DoesNothing)
{
    Array<String> array;
    qor::XmlElement element("x");
    element.setText("text");
    String value("untouched");

    array.insertValueToContainer(0, &element, value);

    EXPECT_EQ(0u, array.size());
    EXPECT_EQ(String("untouched"), value);
}

TEST(ArrayClassName, IsArrayOfOthersButForTextsAndNumbers)
{
    EXPECT_EQ(String("ArrayOfOthers"), Array<Tracked>::className());
    EXPECT_EQ(String("ArrayOfOthers"), Array<char>::className());
    EXPECT_EQ(String("A(String)"), Array<String>::className());
    EXPECT_EQ(String("A(Uint32)"), Array<unsigned int>::className());
}

TEST(ArrayClassName, IsMadeOnce)
{
    EXPECT_EQ(&Array<Tracked>::className(), &Array<Tracked>::className());
    EXPECT_TRUE((std::is_same_v<const String&, decltype(Array<Tracked>::className())>));
}

TEST(ArrayClassName, IsWhatTheObjectAnswers)
{
    Array<Tracked> others;
    Array<unsigned int> numbers;
    qor::Serializable& base = others;

    EXPECT_EQ(&Array<Tracked>::className(), &base.objectClassName());
    EXPECT_EQ(&Array<unsigned int>::className(), &numbers.objectClassName());
}
}
