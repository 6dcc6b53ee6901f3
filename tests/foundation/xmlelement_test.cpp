#include "qor/serializable.h"

#include "qor/exception.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using qor::String;
using qor::XmlElement;

namespace
{
/// Message about the text, without its fixed start.
std::string complaint(std::string_view text)
{
    const std::string beginning = "XML is not well formed at ";
    try
    {
        XmlElement::read(String::fromUtf8(text));
    }
    catch (const qor::SerializationFailed& error)
    {
        const std::string message = error.what();
        return message.compare(0, beginning.size(), beginning) == 0 ? message.substr(beginning.size()) : message;
    }
    return "none";
}

std::string refusal(const XmlElement& element)
{
    try
    {
        element.write();
    }
    catch (const qor::SerializationFailed& error)
    {
        return error.what();
    }
    return "none";
}

String textOf(std::string_view xml)
{
    return XmlElement::read(String::fromUtf8(xml)).text();
}

TEST(XmlElementTree, HoldsANameATextAndChildrenInOrder)
{
    XmlElement root("root");
    root.add(XmlElement("first")).setText("1");
    root.add(XmlElement("second"));
    root.add(XmlElement("first")).setText("3");

    EXPECT_EQ(String("root"), root.name());
    EXPECT_EQ(String(), root.text());
    ASSERT_EQ(3u, root.children().size());
    EXPECT_EQ(String("second"), root.children()[1].name());
    EXPECT_EQ(&root.children()[0], root.child("first"));
    EXPECT_EQ(String("1"), root.child("first")->text());
    EXPECT_EQ(nullptr, root.child("First"));
}

TEST(XmlElementWrite, PutsChildrenAndTextBetweenTheTags)
{
    XmlElement root("root");
    root.add(XmlElement("child")).setText("text");
    root.add(XmlElement("empty"));

    EXPECT_EQ(String("<root><child>text</child><empty></empty></root>"), root.write());
}

TEST(XmlElementWrite, EscapesWhatHasAMeaningInXml)
{
    XmlElement element("e");
    element.setText("<a & \"b\" 'c'>");

    EXPECT_EQ(String("<e>&#60;a &#38; &#34;b&#34; &#39;c&#39;&#62;</e>"), element.write());
}

TEST(XmlElementWrite, EscapesWhatPlainXmlDoesNotAllow)
{
    const auto written = [](unsigned short unit)
    {
        const unsigned short text[] = {unit, 0};
        XmlElement element("e");
        element.setText(text);
        return element.write();
    };

    for (const unsigned short unit : {0x1, 0x1F, 0x7F, 0xD800, 0xDFFF, 0xFFFE, 0xFFFF})
        EXPECT_EQ(String::fromUtf8("<e>&#" + std::to_string(unit) + ";</e>"), written(unit));
    for (const unsigned short unit : {0x20, 0x7E, 0x80, 0xD7FF, 0xE000, 0xFFFD})
        EXPECT_EQ(std::string("<e></e>").size() + 1, written(unit).size()) << unit; // as it is
}

TEST(XmlElementWrite, TakesLettersDigitsAndTheUsualMarksForANameAndNothingElse)
{
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    for (char c = 1; c < 0x7F; ++c)
    {
        const bool startsName = letters.find(c) != std::string::npos;
        const bool continuesName = startsName || std::string("0123456789-.:").find(c) != std::string::npos;

        EXPECT_EQ(startsName, refusal(XmlElement(String::fromUtf8(std::string(1, c)))) == "none") << c;
        EXPECT_EQ(continuesName, refusal(XmlElement(String::fromUtf8(std::string("a") + c))) == "none") << c;
    }
}

TEST(XmlElementWrite, RefusesAnInvalidName)
{
    EXPECT_EQ("Invalid name of an element: ", refusal(XmlElement("")));
    EXPECT_EQ("Invalid name of an element: 1st", refusal(XmlElement("1st")));
    EXPECT_EQ("Invalid name of an element: a b", refusal(XmlElement("a b")));
    EXPECT_EQ("Invalid name of an element: a<b", refusal(XmlElement("a<b")));
}

TEST(XmlElementWrite, RefusesTextTogetherWithChildren)
{
    XmlElement element("both");
    element.setText("text");
    element.add(XmlElement("child"));

    EXPECT_EQ("Element with both text and elements: both", refusal(element));
}

TEST(XmlElementWrite, RefusesATextThatHoldsAZero)
{
    XmlElement element("e");
    element.setText(String::fromUtf8(std::string_view("a\0b", 3)));

    EXPECT_EQ("Text with a zero cannot be written", refusal(element));
}

TEST(XmlElementRead, ReadsEveryUnitThatWasWritten)
{
    for (unsigned int unit = 1; unit <= 0xFFFF; ++unit)
    {
        const unsigned short text[] = {'a', static_cast<unsigned short>(unit), static_cast<unsigned short>(unit), 0};
        XmlElement element("e");
        element.setText(text);

        ASSERT_EQ(String(text), XmlElement::read(element.write()).text()) << unit;
    }
}

TEST(XmlElementRead, TakesNamesOfLettersDigitsAndTheUsualMarks)
{
    EXPECT_EQ(String("m_arrKey"), XmlElement::read("<m_arrKey/>").name());
    EXPECT_EQ(String("_a-1.b:c"), XmlElement::read("<_a-1.b:c></_a-1.b:c>").name());
    EXPECT_EQ(String("\xE4"), XmlElement::read("<\xE4/>").name());
}

TEST(XmlElementRead, PassesOverWhiteSpaceBetweenElements)
{
    const XmlElement root = XmlElement::read(" \r\n\t<root>\n  <a/>\n  <b>1</b>\n</root>\n");

    ASSERT_EQ(2u, root.children().size());
    EXPECT_EQ(String(), root.text());
    EXPECT_EQ(String("1"), root.children()[1].text());
}

TEST(XmlElementRead, KeepsWhiteSpaceInATextWithoutElements)
{
    EXPECT_EQ(String("  a \n b "), textOf("<e>  a \n b </e>"));
    EXPECT_EQ(String("  "), textOf("<e>  </e>"));
}

TEST(XmlElementRead, PassesOverPrologAndComments)
{
    const XmlElement root = XmlElement::read("<?xml version=\"1.0\"?>\n<!-- one --><root><!-- two -->a<!-- three -->b"
                                             "</root><!-- four -->");

    EXPECT_EQ(String("ab"), root.text());
}

TEST(XmlElementRead, AcceptsWhiteSpaceAfterANameInATag)
{
    EXPECT_EQ(String("a"), XmlElement::read("<a />").name());
    EXPECT_EQ(String("a"), XmlElement::read("<a ></a\n>").name());
}

TEST(XmlElementRead, TakesNamedAndNumberedReferences)
{
    EXPECT_EQ(String("<>&\"'"), textOf("<e>&lt;&gt;&amp;&quot;&apos;</e>"));
    EXPECT_EQ(String("AZz"), textOf("<e>&#65;&#x5A;&#x7a;</e>"));
    EXPECT_EQ(String(" "), textOf("<e>&#32;</e>"));
}

TEST(XmlElementRead, TakesTheDigitsOfItsBaseInAReferenceAndNothingElse)
{
    const auto accepts = [](const std::string& reference)
    { return complaint("<e>&#" + reference + ";</e>") == "none"; };
    for (char c = ' '; c <= '~'; ++c)
    {
        const bool isDecimal = std::string("0123456789").find(c) != std::string::npos;
        const bool isHexadecimal = isDecimal || std::string("abcdefABCDEF").find(c) != std::string::npos;

        EXPECT_EQ(isDecimal || c == ';', accepts(std::string("1") + c)) << c; // "1;;" ends before the second one
        EXPECT_EQ(isHexadecimal || c == ';', accepts(std::string("x1") + c)) << c;
    }
}

TEST(XmlElementRead, TakesReferencesInsideWords)
{
    EXPECT_EQ(String("left & right < all"), textOf("<e>left &amp; right &lt; all</e>"));
}

TEST(XmlElementReadFailure, ReportsLineAndColumn)
{
    EXPECT_EQ("line 1, column 1: element expected", complaint(""));
    EXPECT_EQ("line 3, column 3: name expected", complaint("<a>\n<b/>\n < c/></a>"));
}

TEST(XmlElementReadFailure, CountsACharacterAsOneColumn)
{
    EXPECT_EQ("line 1, column 7: reference expected", complaint("<e>\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80&;</e>"));
}

TEST(XmlElementReadFailure, CoversTagsThatDoNotFit)
{
    EXPECT_EQ("line 1, column 7: end tag does not match the open element", complaint("<a></b></a>"));
    EXPECT_EQ("line 1, column 4: end of the element expected", complaint("<a>"));
    EXPECT_EQ("line 1, column 7: end of the element expected", complaint("<a></a"));
    EXPECT_EQ("line 1, column 4: attributes are not supported", complaint("<a b=\"c\"/>"));
    EXPECT_EQ("line 1, column 5: unexpected content after the element", complaint("<a/><b/>"));
}

TEST(XmlElementReadFailure, CoversTextThatDoesNotFit)
{
    EXPECT_EQ("line 1, column 10: element with both text and elements", complaint("<a>b<c/>d</a>"));
    EXPECT_EQ("line 1, column 1: element expected", complaint("text"));
    EXPECT_EQ("line 1, column 5: text with a zero", complaint(std::string_view("<a>b\0</a>", 9)));
}

TEST(XmlElementReadFailure, CoversReferences)
{
    EXPECT_EQ("line 1, column 4: reference expected", complaint("<a>&nbsp;</a>"));
    EXPECT_EQ("line 1, column 6: digit expected", complaint("<a>&#A;</a>"));
    EXPECT_EQ("line 1, column 6: reference outside 1 to 65535", complaint("<a>&#;</a>"));
    EXPECT_EQ("line 1, column 7: reference outside 1 to 65535", complaint("<a>&#0;</a>"));
    EXPECT_EQ("line 1, column 11: reference outside 1 to 65535", complaint("<a>&#65536;</a>"));
    EXPECT_EQ("line 1, column 8: semicolon expected after a reference", complaint("<a>&#65"));
}

TEST(XmlElementReadFailure, CoversCommentsAndPrologsWithoutAnEnd)
{
    EXPECT_EQ("line 1, column 5: comment without an end", complaint("<!-- <a/>"));
    EXPECT_EQ("line 1, column 8: comment without an end", complaint("<a><!-- </a>"));
    EXPECT_EQ("line 1, column 3: prolog without an end", complaint("<?xml <a/>"));
}

TEST(XmlElementReadFailure, EndsTooDeepElements)
{
    std::string deep;
    std::string ends;
    for (int depth = 0; depth < 200; ++depth)
    {
        deep += "<a>";
        ends += "</a>";
    }

    EXPECT_EQ("none", complaint(deep + ends));
    EXPECT_EQ("line 1, column 601: elements are nested too deeply", complaint("<a>" + deep + ends + "</a>"));
}
}
