#include "client/anonymity/rules.h"

#include "client/anonymity/letters.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace sonavit::anonymity
{
namespace
{
bool isWordPart(char32_t character)
{
    return isDigit(character) || isLetter(character);
}

bool isElementPart(char32_t character)
{
    return isWordPart(character) || character == U'&' || character == U'_' || character == U'-';
}

constexpr std::u32string_view buses[] = {U"acpi",    U"bthenum", U"bthhfenum", U"bthle", U"bthledevice",
                                         U"display", U"hdaudio", U"hid",       U"htree", U"intelaudio",
                                         U"pci",     U"root",    U"swd",       U"usb"};

/// "USB" in "USB\VID_C0DE&PID_0001\0123", in paths that contain such an id, and as the name of an enumerator is a word
/// of the platform, even if a computer or an account has that name.
bool isBus(const std::u32string& text, std::size_t begin, std::size_t end)
{
    const bool isAll = begin == 0 && end == text.size();
    const bool isWhole = isAll || (end < text.size() && (text[end] == U'\\' || text[end] == U'#') &&
                                   (begin == 0 || text[begin - 1] == U'.' || text[begin - 1] == U'\\'));
    const std::u32string_view word = std::u32string_view(text).substr(begin, end - begin);
    return isWhole && std::find(std::begin(buses), std::end(buses), word) != std::end(buses);
}

std::string_view textOf(const std::vector<std::uint8_t>& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
}

bool isAt(const std::u32string& text, std::size_t position, const std::u32string& original, Extent extent)
{
    if (text.compare(position, original.size(), original) != 0)
        return false;
    const std::size_t end = position + original.size();
    if (isBus(text, position, end))
        return false;
    const bool isEnd = end == text.size();
    switch (extent)
    {
    case Extent::word:
        return (position == 0 || !isWordPart(text[position - 1])) && (isEnd || !isWordPart(text[end]));
    case Extent::element:
        return position > 0 && (text[position - 1] == U'\\' || text[position - 1] == U'#') &&
               (isEnd || !isElementPart(text[end]));
    default:
        return true;
    }
}

void Rules::add(Rule rule)
{
    std::vector<Rule>& rules = m_rules[rule.original.front()];
    const auto place = std::find_if(rules.begin(), rules.end(),
                                    [&](const Rule& each) { return each.original.size() < rule.original.size(); });
    rules.insert(place, std::move(rule));
}

void Rules::addBytes(const std::vector<std::uint8_t>& original, const std::vector<std::uint8_t>& replacement)
{
    m_bytes.push_back({original, replacement});
}

void Rules::addNumber(std::uint64_t original, std::uint64_t replacement)
{
    m_numbers.emplace(original, replacement);
}

bool Rules::replaceIn(std::u32string& characters) const
{
    const std::u32string text = folded(characters);
    bool isChanged = false;
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        const auto rules = m_rules.find(text[at]);
        if (rules == m_rules.end())
            continue;
        const auto rule = std::find_if(rules->second.begin(), rules->second.end(),
                                       [&](const Rule& each) { return isAt(text, at, each.original, each.extent); });
        if (rule == rules->second.end())
            continue;
        for (std::size_t index = 0; index < rule->original.size(); ++index)
        {
            char32_t& character = characters[at + index];
            const char32_t other = rule->replacement[index];
            character = character == text[at + index] ? other : capital(other);
        }
        isChanged = true;
        at += rule->original.size() - 1;
    }
    return isChanged;
}

void Rules::replaceIn(std::string& text) const
{
    std::u32string characters = charactersOf(text);
    if (replaceIn(characters))
        text = ofCharacters(characters);
}

void Rules::replaceIn(std::vector<std::uint8_t>& bytes) const
{
    for (const Bytes& each : m_bytes)
    {
        const auto search = [&](auto from)
        { return std::search(from, bytes.end(), each.original.begin(), each.original.end()); };
        for (auto found = search(bytes.begin()); found != bytes.end(); found = search(found))
            found = std::copy(each.replacement.begin(), each.replacement.end(), found);
    }
    std::u32string characters = charactersOf(textOf(bytes));
    if (replaceIn(characters))
    {
        const std::string text = ofCharacters(characters);
        bytes.assign(text.begin(), text.end());
    }
    for (const std::size_t start : {std::size_t{0}, std::size_t{1}})
    {
        characters = wideCharactersIn(bytes, start);
        if (replaceIn(characters))
            storeWide(characters, bytes, start);
    }
}

void Rules::replaceIn(std::uint64_t& number) const
{
    const auto found = m_numbers.find(number);
    if (found != m_numbers.end())
        number = found->second;
}

/// A GUID has the form of its string: hexadecimal digits are replaced by such digits.
void Replacing::guid(GUID& guid)
{
    std::string text = sim::guidText(guid);
    m_rules.replaceIn(text);
    if (const std::optional<GUID> other = sim::guidFromText(text))
        guid = *other;
}
}
