/// @file
/// What every text must be that is made from what a platform has answered.
#pragma once

#include "simulator/machine/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace hostile
{
/// Expects characters of UTF-8 only; what else was in the platform's text is U+FFFD.
inline void expectUtf8(const std::string& text)
{
    for (std::size_t place = 0; place < text.size();)
    {
        const sim::Utf8Character character = sim::characterAt(text, place);
        const bool isSurrogate = character.code >= 0xD800 && character.code <= 0xDFFF;
        if (character.isBroken || isSurrogate)
        {
            ADD_FAILURE() << "no UTF-8 at byte " << place << " of: " << text.substr(0, 200);
            return;
        }
        place += character.size;
    }
}

/// Expects a text that shows what it says on any terminal, and nothing else.
/// @param isOneLine whether it has no end of line
inline void expectPrintable(const std::string& text, bool isOneLine = true)
{
    expectUtf8(text);
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        const bool isControl = byte < 0x20 || byte == 0x7F;
        if (isControl && (isOneLine || byte != '\n'))
        {
            ADD_FAILURE() << "a control character, " << int{byte} << ", in: " << text.substr(0, 200);
            return;
        }
    }
}

/// The same of a title or a sentence, which says something.
inline void expectSaid(const std::string& text)
{
    EXPECT_NE("", text);
    expectPrintable(text);
}
}
