/// @file
/// What is replaced by what.
#pragma once

#include "client/anonymity/places.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace sonavit::anonymity
{
/// Where a string counts.
enum class Extent
{
    anywhere,
    word,   ///< where no letter or digit is next to it
    element ///< as a whole element of an id, after "\" or "#"
};

/// A string and the one that replaces it, of as many characters of the same sizes, both in lower case.
struct Rule
{
    std::u32string original;
    std::u32string replacement;
    Extent extent = Extent::anywhere;
};

/// Replaces strings in one pass: the leftmost one first, of those the longest one. A capital letter is replaced by one.
class Rules
{
public:
    void add(Rule rule);
    /// Bytes of blobs that are no string.
    void addBytes(const std::vector<std::uint8_t>& original, const std::vector<std::uint8_t>& replacement);
    void addNumber(std::uint64_t original, std::uint64_t replacement);

    /// Whether something was replaced.
    bool replaceIn(std::u32string& characters) const;
    void replaceIn(std::string& text) const;
    /// Bytes, strings in UTF-8 or another code that contains ASCII, and strings in UTF-16.
    void replaceIn(std::vector<std::uint8_t>& bytes) const;
    void replaceIn(std::uint64_t& number) const;

private:
    struct Bytes
    {
        std::vector<std::uint8_t> original;
        std::vector<std::uint8_t> replacement;
    };

    std::unordered_map<char32_t, std::vector<Rule>> m_rules; ///< by the first character, long ones first
    std::vector<Bytes> m_bytes;
    std::unordered_map<std::uint64_t, std::uint64_t> m_numbers;
};

/// Whether @p original, in lower case, is at @p position of @p text, in lower case, with the extent that counts.
bool isAt(const std::u32string& text, std::size_t position, const std::u32string& original, Extent extent);

/// Replaces what rules say, at each place.
class Replacing final : public PlaceVisitor
{
public:
    explicit Replacing(const Rules& rules) : m_rules(rules) {}

    void text(std::string& text) override { m_rules.replaceIn(text); }
    void guid(GUID& guid) override;
    void number(std::uint64_t& number) override { m_rules.replaceIn(number); }
    void bytes(std::vector<std::uint8_t>& bytes) override { m_rules.replaceIn(bytes); }

private:
    const Rules& m_rules;
};
}
