#include "tools/sonavit/output/text.h"

#include <algorithm>

namespace sonavit::program
{
std::optional<std::string> textOrNothing(const qor::String& text)
{
    if (text.size() == 0)
        return std::nullopt;
    return text.toUtf8();
}

std::string inQuotes(std::string_view text)
{
    return text::quoted(text);
}

std::vector<std::string> wrapped(const std::string& text, std::size_t width)
{
    std::vector<std::string> lines(1);
    for (std::size_t start = 0; start < text.size();)
    {
        const std::size_t end = std::min(text.find(' ', start), text.size());
        const std::string word = text.substr(start, end - start);
        const bool isFirst = lines.back().empty();
        if (!isFirst && width > 0 && displayWidth(lines.back()) + 1 + displayWidth(word) > width)
            lines.push_back(word);
        else
            lines.back() += (isFirst ? "" : " ") + word;
        start = end + 1;
    }
    return lines;
}

std::string padded(const std::string& text, std::size_t width)
{
    const std::size_t own = displayWidth(text);
    return own < width ? text + std::string(width - own, ' ') : text;
}

std::string paddedLeft(const std::string& text, std::size_t width)
{
    const std::size_t own = displayWidth(text);
    return own < width ? std::string(width - own, ' ') + text : text;
}

bool containsNoCase(std::string_view text, std::string_view piece)
{
    return lowerCase(text).find(lowerCase(piece)) != std::string::npos;
}

std::string percentText(const std::optional<unsigned>& percent)
{
    return percent ? std::to_string(*percent) + "%" : nothing;
}

std::string decibelText(const std::optional<float>& decibels)
{
    return decibels ? decimalText(*decibels, 2) + " dB" : nothing;
}

std::string decimalText(float value, int decimals)
{
    return text::decimal(static_cast<double>(value), decimals);
}
}
