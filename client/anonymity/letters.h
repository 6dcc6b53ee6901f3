/// @file
/// Strings as characters, for searches regardless of case in all of the encodings that a machine may contain.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit::anonymity
{
/// The characters of @p text. A byte that is not UTF-8 becomes a character of its own. ofCharacters() gives the same
/// bytes again.
std::u32string charactersOf(std::string_view text);
std::string ofCharacters(const std::u32string& characters);

/// @p characters of ISO 8859-1 as charactersOf() has them if their bytes are no UTF-8; empty if it has not all of them.
std::u32string asBytes(std::u32string characters);

/// The characters of UTF-16, little-endian, in @p bytes from @p start on; an odd byte at the end is left out.
std::u32string wideCharactersIn(const std::vector<std::uint8_t>& bytes, std::size_t start);
void storeWide(const std::u32string& characters, std::vector<std::uint8_t>& bytes, std::size_t start);

/// Letters of the Latin, Greek and Cyrillic alphabets in lower case, also bytes that are letters of ISO 8859-1; other
/// characters as they are. The size of a
/// character is the same in either case.
char32_t folded(char32_t character);
std::u32string folded(std::u32string characters);
/// The capital letter of such a letter; other characters as they are.
char32_t capital(char32_t character);

bool isDigit(char32_t character);
/// Letters of any alphabet, and what else is not known to be something different.
bool isLetter(char32_t character);
/// A digit, or A to F in either case.
bool isHexDigit(char32_t character);

/// A character of the same kind and size in every encoding, which @p number chooses: a digit for a digit, a small
/// letter for a letter, the same character for any other.
/// @param isHex letters from a to f only
char32_t otherOfItsKind(char32_t character, std::uint32_t number, bool isHex);
}
