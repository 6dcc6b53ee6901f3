#include "simulator/machine/printable.h"

#include "simulator/machine/utf8.h"

#include <cstdint>
#include <cstdio>

namespace sim
{
namespace
{
/// Whether a character has no place in a message: it steers the terminal, breaks the line or turns what follows around.
bool mustBeEscaped(std::uint32_t code)
{
    const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
    const bool isSeparator = code == 0x2028 || code == 0x2029;
    const bool isDirection = code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
                             (code >= 0x2066 && code <= 0x2069);
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return isControl || isSeparator || isDirection || isSurrogate;
}

/// A character as messages show it; @p bytes are its bytes.
std::string escaped(const Utf8Character& character, const std::string& bytes)
{
    if (!character.isBroken && !mustBeEscaped(character.code))
        return bytes;
    if (character.code == '\n')
        return "\\n";
    if (character.code == '\t')
        return "\\t";
    char text[12] = {};
    std::snprintf(text, sizeof text, character.isBroken ? "\\x%02lX" : "\\u%04lX",
                  static_cast<unsigned long>(character.code));
    return text;
}
}

std::string printable(const std::string& text, std::size_t longest)
{
    std::string result;
    for (std::size_t position = 0; position < text.size();)
    {
        const Utf8Character character = characterAt(text, position);
        const std::string piece = escaped(character, text.substr(position, character.size));
        if (result.size() + piece.size() > longest)
            return result + "...";
        result += piece;
        position += character.size;
    }
    return result;
}

std::string inQuotes(const std::string& text, std::size_t longest)
{
    return "\"" + printable(text, longest) + "\"";
}
}
