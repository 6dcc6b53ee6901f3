#include "qor/serializable.h"

#include "qor/array.h"
#include "qor/exception.h"
#include "qor/hashtable.h"
#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supporttracked.h"
#include "tests/foundation/supportvirtualslot.h"
#include "tests/support/printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using qor::Array;
using qor::Serializable;
using qor::String;
using qor::XmlElement;
using testing::HasSubstr;

namespace
{
/// A class with one field of each type that can be serialized.
class Preset : public Serializable
{
public:
    void deserializeFromElement(const XmlElement* element) override
    {
        deserializeBegin(element);
        Serializable::deserialize("names", names);
        Serializable::deserialize("levels", levels);
        Serializable::deserialize("table", table);
        deserializeEnd();
    }

    void serializeToXML(const String& name, String& out) override
    {
        serializeBegin(name);
        serialize("names", names);
        serialize("levels", levels);
        serialize("table", table);
        serializeEnd();
        getSerializedXML(out);
    }

    const String& objectClassName() override
    {
        static const String name("Preset");
        return name;
    }

    Array<String> names;
    Array<unsigned int> levels;
    qor::HashTable<String, unsigned int> table;
};

const char* const presetText = "<preset><names><item>left &#38; right</item><item></item></names>"
                               "<levels><item>0</item><item>4294967295</item></levels>"
                               "<table><m_arrKey><item>key</item></m_arrKey><m_arrValue><item>7</item></m_arrValue>"
                               "</table></preset>";

template<class Operation>
std::string failure(Operation operation)
{
    try
    {
        operation();
    }
    catch (const qor::SerializationFailed& error)
    {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(SerializableText, HoldsTextsNumbersAndOtherFieldsByName)
{
    Preset preset;
    preset.names.append(String("left & right"));
    preset.names.append(String());
    preset.levels.append(0u);
    preset.levels.append(4294967295u);
    preset.table.insert("key", 7);
    String out("replaced");

    preset.doSerialization("preset", out);

    EXPECT_EQ(String(presetText), out);
}

TEST(SerializableText, IsReadBack)
{
    Preset preset;

    preset.deserialize(presetText);

    ASSERT_EQ(2u, preset.names.size());
    EXPECT_EQ(String("left & right"), preset.names[0]);
    EXPECT_EQ(String(), preset.names[1]);
    ASSERT_EQ(2u, preset.levels.size());
    EXPECT_EQ(0u, preset.levels[0]);
    EXPECT_EQ(4294967295u, preset.levels[1]);
    EXPECT_EQ(7u, *preset.table.lookup("key"));
}

TEST(SerializableText, CanBeReadTwice)
{
    Preset preset;

    preset.deserialize(presetText);
    preset.deserialize(presetText);

    EXPECT_EQ(2u, preset.names.size());
}

TEST(SerializableText, LeavesNoMemoryBehindWhenItIsWrittenAndWhenItIsRead)
{
    Preset preset;
    preset.deserialize(presetText);
    const support::AllocationProbe probe;

    for (int i = 0; i < 3; ++i)
    {
        String out;
        preset.doSerialization("preset", out);
    }
    EXPECT_EQ(0, probe.balance());

    preset.deserialize(presetText);
    EXPECT_EQ(0, probe.balance());
}

TEST(SerializableText, ThatIsNotReadToItsEndIsForgottenWithTheObject)
{
    const support::AllocationProbe probe;

    {
        Preset preset;
        EXPECT_THROW(preset.deserialize("<preset/>"), qor::SerializationFailed);
    }

    EXPECT_EQ(0, probe.balance());
}

TEST(SerializableText, ThatIsNotWellFormedFailsAndSaysWhere)
{
    Preset preset;

    EXPECT_THAT(failure([&] { preset.deserialize("<preset>\n<names>"); }), HasSubstr("line 2, column 8"));
}

TEST(SerializableText, WithoutAFieldFailsAndNamesIt)
{
    Preset preset;

    EXPECT_EQ("Missing element: levels", failure([&] { preset.deserialize("<preset><names/></preset>"); }));
}

TEST(SerializableText, WithAForeignElementInAnArrayFailsAndNamesIt)
{
    Preset preset;

    EXPECT_EQ("Not an item of an array: entry",
              failure([&] { preset.deserialize("<preset><names><entry/></names></preset>"); }));
}

TEST(SerializableText, WithElementsInPlaceOfTheTextOfAnItemFails)
{
    Preset preset;

    EXPECT_EQ(
        "Elements instead of text: item",
        failure(
            [&]
            { preset.deserialize("<preset><names><item><item>a</item></item></names><levels/><table/></preset>"); }));
    EXPECT_EQ(
        "Elements instead of text: item",
        failure([&] { preset.deserialize("<preset><names/><levels><item><a/></item></levels><table/></preset>"); }));
}

TEST(SerializableText, WithAnItemThatDoesNotFitKeepsTheItemsBefore)
{
    Preset preset;

    EXPECT_THROW(preset.deserialize("<preset><names><item>a</item><entry/></names><levels/><table/></preset>"),
                 qor::SerializationFailed);

    ASSERT_EQ(1u, preset.names.size());
    EXPECT_EQ(String("a"), preset.names[0]);
}

TEST(SerializableText, WithTextInPlaceOfItemsFailsAndNamesTheElement)
{
    Preset preset;

    EXPECT_EQ("Text instead of items: names",
              failure([&] { preset.deserialize("<preset><names>left</names><levels/><table/></preset>"); }));
    EXPECT_EQ("Text instead of items: levels",
              failure([&] { preset.deserialize("<preset><names/><levels>\n 7 </levels><table/></preset>"); }));
    EXPECT_EQ("Text instead of items: m_arrKey",
              failure(
                  [&]
                  {
                      preset.deserialize("<preset><names/><levels/><table><m_arrKey>a</m_arrKey><m_arrValue/></table>"
                                         "</preset>");
                  }));
}

TEST(SerializableText, WithBlanksInPlaceOfItemsHasNone)
{
    Preset preset;
    preset.names.append(String("old"));

    preset.deserialize("<preset><names>\r\n\t </names><levels> </levels><table><m_arrKey> </m_arrKey><m_arrValue> "
                       "</m_arrValue></table></preset>");

    EXPECT_EQ(0u, preset.names.size());
    EXPECT_EQ(0u, preset.levels.size());
}

TEST(SerializableText, WithSomethingElseThanA32BitNumberFailsAndShowsIt)
{
    for (const std::string number : {"", "-1", "1x", " 1", "4294967296", "99999999999999999999999"})
    {
        const std::string text = "<preset><names/><levels><item>" + number + "</item></levels><table/></preset>";
        Preset preset;

        EXPECT_EQ("Not a 32-bit number: " + number, failure([&] { preset.deserialize(text.c_str()); }));
    }
}

TEST(SerializableText, ThatFailedCanBeFollowedByTextThatIsRead)
{
    Preset preset;
    EXPECT_THROW(preset.deserialize("<preset/>"), qor::SerializationFailed);

    preset.deserialize(presetText);

    EXPECT_EQ(2u, preset.levels.size());
}

/// A class with an array that cannot be serialized.
class Refused : public Serializable
{
public:
    void deserializeFromElement(const XmlElement* element) override
    {
        deserializeBegin(element);
        Serializable::deserialize("field", field);
        deserializeEnd();
    }
    void serializeToXML(const String& name, String& out) override
    {
        serializeBegin(name);
        serialize("field", field);
        serializeEnd();
        getSerializedXML(out);
    }
    const String& objectClassName() override { return Array<support::Tracked>::className(); }

    Array<support::Tracked> field;
};

TEST(SerializableField, ThatRefusesToBeWrittenThrowsUnderItsName)
{
    Refused object;
    String out("untouched");

    EXPECT_EQ("Serialization is not supported for: field", failure([&] { object.serializeToXML("x", out); }));
    EXPECT_EQ(String("untouched"), out);
}

TEST(SerializableField, ThatRefusesToBeReadSaysSoAndIsPassedOver)
{
    Refused object;
    testing::internal::CaptureStdout();

    EXPECT_NO_THROW(object.deserialize("<x><field/></x>"));

    EXPECT_EQ("Serialization isn't support for this class!!!\n", testing::internal::GetCapturedStdout());
}

TEST(SerializableField, CannotBeReadWithoutAnElement)
{
    Preset preset;

    EXPECT_EQ("Missing element: names", failure([&] { preset.deserializeFromElement(nullptr); }));
}

/// Has the class name of the array of strings but is not one; serializes its own text.
class Impostor : public Serializable
{
public:
    void deserializeFromElement(const XmlElement* element) override { text = element->text(); }
    void serializeToXML(const String& name, String& out) override
    {
        XmlElement element(name);
        element.setText(text);
        out = element.write();
    }
    const String& objectClassName() override { return Array<String>::className(); }

    String text;
};

/// An array of strings with another class name.
class NamedArray : public Array<String>
{
public:
    const String& objectClassName() override
    {
        static const String name("NamedArray");
        return name;
    }
};

/// A class with two fields whose class names do not match their types.
class Misnamed : public Serializable
{
public:
    void deserializeFromElement(const XmlElement* element) override
    {
        deserializeBegin(element);
        Serializable::deserialize("impostor", impostor);
        Serializable::deserialize("array", array);
        deserializeEnd();
    }
    void serializeToXML(const String& name, String& out) override
    {
        serializeBegin(name);
        serialize("impostor", impostor);
        serialize("array", array);
        serializeEnd();
        getSerializedXML(out);
    }
    const String& objectClassName() override { return array.objectClassName(); }

    Impostor impostor;
    NamedArray array;
};

TEST(SerializableField, IsWrittenAndReadByItsTypeWhateverItsClassName)
{
    Misnamed written;
    written.impostor.text = "own";
    written.array.append(String("item"));
    Misnamed read;
    String text;

    written.serializeToXML("x", text);
    read.deserialize(text);

    EXPECT_EQ(String("<x><impostor>own</impostor><array><item>item</item></array></x>"), text);
    EXPECT_EQ(String("own"), read.impostor.text);
    ASSERT_EQ(1u, read.array.size());
    EXPECT_EQ(String("item"), read.array[0]);
}

TEST(SerializableContainer, GetsTheTextOfAnElementWhereItDoesNotOverrideThat)
{
    Preset preset;
    XmlElement element("item");
    element.setText("text");
    String value("untouched");

    preset.insertValueToContainer(0, nullptr, value);
    EXPECT_EQ(String("untouched"), value);
    preset.insertValueToContainer(0, &element, value);

    EXPECT_EQ(String("text"), value);
}

TEST(SerializableCopy, TakesNothingOfAnUnfinishedText)
{
    Preset preset;
    preset.serializeBegin("begun");
    preset.serializeEnd();

    Preset copy(preset);
    Preset assigned;
    assigned = preset;
    String ofCopy("x");
    String ofAssigned("x");
    String ofOriginal;
    copy.getSerializedXML(ofCopy);
    assigned.getSerializedXML(ofAssigned);
    preset.getSerializedXML(ofOriginal);

    EXPECT_EQ(String(), ofCopy);
    EXPECT_EQ(String(), ofAssigned);
    EXPECT_EQ(String("<begun></begun>"), ofOriginal);
}

TEST(SerializableInterface, LetsExceptionsPassItsVirtualDestructor)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<Serializable>);
    EXPECT_FALSE(std::is_nothrow_destructible_v<Preset>);
    EXPECT_TRUE(std::is_abstract_v<Serializable>);
}

#if defined(SUPPORT_HAS_VIRTUAL_SLOTS)
TEST(SerializableInterface, HasItsVirtualOperationsInTheirFixedOrder)
{
    using support::virtualSlot;
    using ReadText = void (Serializable::*)(const String&);

    EXPECT_EQ(2u, virtualSlot(&Serializable::doSerialization)); // after the two slots of the destructor
    EXPECT_EQ(3u, virtualSlot(static_cast<ReadText>(&Serializable::deserialize)));
    EXPECT_EQ(4u, virtualSlot(&Serializable::deserializeFromElement));
    EXPECT_EQ(5u, virtualSlot(&Serializable::serializeToXML));
    EXPECT_EQ(6u, virtualSlot(&Serializable::objectClassName));
    EXPECT_EQ(7u, virtualSlot(&Serializable::serializeBegin));
    EXPECT_EQ(8u, virtualSlot(&Serializable::serializeEnd));
    EXPECT_EQ(9u, virtualSlot(&Serializable::getSerializedXML));
    EXPECT_EQ(10u, virtualSlot(&Serializable::deserializeBegin));
    EXPECT_EQ(11u, virtualSlot(&Serializable::deserializeEnd));
    EXPECT_EQ(12u, virtualSlot(&Serializable::insertValueToContainer));
}
#endif
}
