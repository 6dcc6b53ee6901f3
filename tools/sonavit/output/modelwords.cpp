#include "tools/sonavit/output/modelwords.h"

#include "sonavit/nodekind.h"
#include "tools/sonavit/output/text.h"

namespace sonavit::program
{
std::string titleWords(const Endpoint& endpoint)
{
    return printable(endpoint.title());
}

std::string shortTitleWords(const Endpoint& endpoint)
{
    return shortened(titleWords(endpoint), longestQuote);
}

std::string stateWords(const std::optional<State>& state)
{
    return state ? wordsOf(*state) : nothing;
}

std::string rolesWords(Roles roles)
{
    std::vector<std::string> words;
    for (const Role role : roles.list())
        words.emplace_back(wordsOf(role));
    return words.empty() ? nothing : enumeration(words);
}

std::string kindWords(const std::optional<Guid>& type)
{
    return type ? wordsOf(kindOf(*type)) : nothing;
}

std::string jackWords(const Endpoint& endpoint)
{
    if (endpoint.jacks().empty())
        return nothing;
    return printable(endpoint.jacks().front().sentence());
}

std::string percentWords(const std::optional<Percent>& percent)
{
    return percent ? std::to_string(percent->rounded()) + "%" : nothing;
}

std::string decibelWords(const std::optional<Decibels>& decibels)
{
    return decibels ? decimalText(static_cast<float>(decibels->value()), 2) + " dB" : nothing;
}

std::string levelWords(const Level& level)
{
    return percentWords(level.percent) + "  " + decibelWords(level.decibels);
}

std::string rangeWords(const std::optional<LevelRange>& range)
{
    if (!range)
        return nothing;
    return decimalText(static_cast<float>(range->minimum), 2) + " to " +
           decimalText(static_cast<float>(range->maximum), 2) + " dB in steps of " +
           decimalText(static_cast<float>(range->step), 2);
}

std::string muteWords(const std::optional<bool>& isMuted)
{
    if (!isMuted)
        return nothing;
    return *isMuted ? "muted" : "not muted";
}

std::string orNothing(const std::optional<std::string>& text)
{
    return text ? printable(*text) : nothing;
}

std::string orNothing(const std::optional<Guid>& guid)
{
    return guid ? guid->text() : nothing;
}
}
