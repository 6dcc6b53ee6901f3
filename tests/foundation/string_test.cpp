#include "qor/string.h"

#include "qor/logging.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using qor::String;

namespace
{
TEST(StringConstruction, ByDefaultGivesTheEmptyText)
{
    const String text;

    EXPECT_EQ(0u, text.size());
    EXPECT_EQ(String(""), text);
}

TEST(StringConstruction, MakesAValueOnePointerWide)
{
    EXPECT_EQ(sizeof(void*), sizeof(String));
    EXPECT_EQ(sizeof(void*), sizeof(qor::LoggerStream));
}

TEST(StringConstruction, CopiesAnEightBitLiteral)
{
    const String text("Speaker");

    EXPECT_EQ(7u, text.size());
    EXPECT_EQ("Speaker", text.toUtf8());
}

TEST(StringConstruction, EndsWithAZeroWhateverTheMemoryHeldBefore)
{
    const unsigned short units[] = {'S', 'p', 'e', 'a', 'k', 'e', 'r', 's', 0};
    for (std::size_t bytes = 16; bytes <= 96; bytes += 16) // blocks of each size that may be used again
    {
        std::string used(bytes, '\xFF');
        used.clear();
        used.shrink_to_fit();
    }

    const String whole(units);
    const String part = whole.subString(1, 3);

    EXPECT_EQ(0, whole.getUCS2Buffer()[8]);
    EXPECT_EQ(0, part.getUCS2Buffer()[3]);
}

TEST(StringConstruction, ReadsUnitsAbove7FAsLatin1)
{
    const String text("\xE9\xFF");

    ASSERT_EQ(2u, text.size());
    EXPECT_EQ(0xE9, text.getUCS2Buffer()[0]);
    EXPECT_EQ(0xFF, text.getUCS2Buffer()[1]);
}

TEST(StringConstruction, CopiesUcs2TextSoThatTheSourceCanGoAtOnce)
{
    unsigned short source[] = {'a', 0x3B1, 0xFFFF, 0};

    const String text(source);
    source[0] = 'x';

    ASSERT_EQ(3u, text.size());
    EXPECT_EQ('a', text.getUCS2Buffer()[0]);
    EXPECT_EQ(0x3B1, text.getUCS2Buffer()[1]);
    EXPECT_EQ(0xFFFF, text.getUCS2Buffer()[2]);
}

TEST(StringConstruction, ReadsANullPointerAsTheEmptyText)
{
    EXPECT_EQ(String(), String(static_cast<const unsigned short*>(nullptr)));
    EXPECT_EQ(String(), String(static_cast<const char*>(nullptr)));
}

TEST(StringConstruction, OfAnEmptySourceGivesTheEmptyText)
{
    const unsigned short nothing[] = {0};

    EXPECT_EQ(String(), String(nothing));
    EXPECT_EQ(0u, String(nothing).size());
    EXPECT_EQ(0u, String("").size());
}

TEST(StringConstruction, ThrowsLengthErrorForMoreUnitsThanTheLargestSize)
{
    EXPECT_THROW(String::allocate(0x7FFFFFFFu), std::length_error);
}

TEST(StringConstruction, FromAnotherTextGivesAnIndependentCopy)
{
    String original("card");

    const String copy(original);
    original.append(" 1");

    EXPECT_EQ(String("card"), copy);
    EXPECT_EQ(String("card 1"), original);
}

TEST(StringConstruction, ByMovingLeavesTheEmptyText)
{
    String source("card");

    const String target(std::move(source));

    EXPECT_EQ(String("card"), target);
    EXPECT_EQ(String(), source);
}

TEST(StringAssignment, ReplacesTheContentByThatOfAnotherText)
{
    String text("old");

    String& result = text = String("new");

    EXPECT_EQ(&text, &result);
    EXPECT_EQ(String("new"), text);
}

TEST(StringAssignment, ReplacesTheContentByALiteral)
{
    String text("old");

    String& result = text = "new";

    EXPECT_EQ(&text, &result);
    EXPECT_EQ(String("new"), text);
}

TEST(StringAssignment, CopiesUcs2TextSoThatTheSourceCanGoAtOnce)
{
    unsigned short source[] = {'n', 'e', 'w', 0};
    String text("old");

    String& result = text = source;
    source[0] = 0;

    EXPECT_EQ(&text, &result);
    EXPECT_EQ(String("new"), text);
}

TEST(StringAssignment, OfANullPointerGivesTheEmptyText)
{
    String ucs2("old");
    String narrow("old");

    ucs2 = static_cast<const unsigned short*>(nullptr);
    narrow = static_cast<const char*>(nullptr);

    EXPECT_EQ(String(), ucs2);
    EXPECT_EQ(String(), narrow);
}

TEST(StringAssignment, OfATextToItselfChangesNothing)
{
    String text("same");
    const String& same = text;

    text = same;

    EXPECT_EQ(String("same"), text);
}

TEST(StringAssignment, OfAPieceOfItsOwnBufferKeepsThatPiece)
{
    String text("prefix-rest");

    text = text.getUCS2Buffer() + 7;

    EXPECT_EQ(String("rest"), text);
}

TEST(StringAppend, AddsALiteralAtTheEndAndReturnsTheObject)
{
    String text("Appending");

    String& result = text.append(" device");

    EXPECT_EQ(&text, &result);
    EXPECT_EQ(String("Appending device"), text);
}

TEST(StringAppend, AddsATextAtTheEndAndReturnsTheObject)
{
    String text("left ");

    String& result = text.append(String("right"));

    EXPECT_EQ(&text, &result);
    EXPECT_EQ(String("left right"), text);
}

TEST(StringAppend, ToTheEmptyTextGivesTheOther)
{
    String fromText;
    String fromLiteral;

    fromText.append(String("other"));
    fromLiteral.append("other");

    EXPECT_EQ(String("other"), fromText);
    EXPECT_EQ(String("other"), fromLiteral);
}

TEST(StringAppend, OfNothingChangesNothing)
{
    String text("same");

    text.append("").append(String()).append(static_cast<const char*>(nullptr));

    EXPECT_EQ(String("same"), text);
}

TEST(StringAppend, OfTheTextToItselfDoublesIt)
{
    String text("ab");

    text.append(text);
    text.append(text);

    EXPECT_EQ(String("abababab"), text);
}

TEST(StringAppend, ReadsUnitsAbove7FAsLatin1)
{
    String text("a");

    text.append("\xE9");

    EXPECT_EQ(0xE9, text.getUCS2Buffer()[1]);
}

TEST(StringAppend, KeepsTheTextZeroTerminatedWhileItGrows)
{
    String text;
    std::string expected;

    for (int i = 0; i < 500; ++i)
    {
        const char piece[] = {static_cast<char>('a' + i % 26), '\0'};
        text.append(piece);
        expected += piece;
        ASSERT_EQ(expected.size(), text.size());
        ASSERT_EQ(0, text.getUCS2Buffer()[text.size()]);
    }

    EXPECT_EQ(expected, text.toUtf8());
}

TEST(StringAppend, IsWhatPlusEqualsDoes)
{
    String text("left ");

    String& result = text += String("right");

    EXPECT_EQ(&text, &result);
    EXPECT_EQ(String("left right"), text);
}

/// A string that pretends to have @p size units until this object is destroyed.
class PretendedSize
{
public:
    explicit PretendedSize(unsigned int size) : m_text("pretended"), m_size(m_text.size())
    {
        m_text.m_buffer->size = size;
    }
    ~PretendedSize() { m_text.m_buffer->size = m_size; }
    PretendedSize(const PretendedSize&) = delete;
    PretendedSize& operator=(const PretendedSize&) = delete;

    String& text() { return m_text; }

private:
    String m_text;
    const unsigned int m_size;
};

TEST(StringAppend, BeyondTheLargestSizeThrowsLengthErrorAndLeavesTheText)
{
    PretendedSize pretended(2147483615u); // the largest size, without 4 GiB of memory
    const unsigned short* const buffer = pretended.text().getUCS2Buffer();

    EXPECT_THROW(pretended.text().append("x"), std::length_error);
    EXPECT_THROW(pretended.text().append(String("x")), std::length_error);
    EXPECT_THROW(pretended.text() += pretended.text(), std::length_error);

    EXPECT_EQ(2147483615u, pretended.text().size());
    EXPECT_EQ(buffer, pretended.text().getUCS2Buffer());
}

TEST(StringAppend, OfSingleUnitsTakesAFewNewBuffersOnly)
{
    String text;
    int buffers = 0;
    const unsigned short* buffer = text.getUCS2Buffer();

    for (int i = 0; i < 20000; ++i)
    {
        text.append("x");
        buffers += text.getUCS2Buffer() != buffer;
        buffer = text.getUCS2Buffer();
    }

    EXPECT_EQ(20000u, text.size());
    EXPECT_GE(20, buffers) << "room grows with the text, so that appending takes the same time on average";
}

TEST(StringPlus, GivesANewTextWithTheLiteralFirst)
{
    const String right("7");

    const String sum = "Asked for array of size: " + right;

    EXPECT_EQ(String("Asked for array of size: 7"), sum);
    EXPECT_EQ(String("7"), right);
}

TEST(StringClear, MakesTheContentEmpty)
{
    String text("content");

    text.clear();

    EXPECT_EQ(0u, text.size());
    EXPECT_EQ(String(), text);
}

TEST(StringBuffer, IsTheZeroTerminatedText)
{
    const String text("ab");

    const unsigned short* const buffer = text.getUCS2Buffer();

    EXPECT_EQ('a', buffer[0]);
    EXPECT_EQ('b', buffer[1]);
    EXPECT_EQ(0, buffer[2]);
}

TEST(StringBuffer, OfTheEmptyTextIsNotNull)
{
    String cleared("x");
    cleared.clear();

    ASSERT_NE(nullptr, String().getUCS2Buffer());
    EXPECT_EQ(0, *String().getUCS2Buffer());
    ASSERT_NE(nullptr, cleared.getUCS2Buffer());
    EXPECT_EQ(0, *cleared.getUCS2Buffer());
}
}
