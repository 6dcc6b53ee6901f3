#include "texts.h"

namespace bench
{
namespace
{
std::u16string hexadecimal(unsigned int number, std::size_t digits)
{
    std::u16string text(digits, u'0');
    for (std::size_t i = digits; i > 0; --i, number /= 16)
        text[i - 1] = u"0123456789abcdef"[number % 16];
    return text;
}

template<class Make>
std::vector<std::u16string> made(unsigned int count, Make make)
{
    std::vector<std::u16string> texts;
    for (unsigned int i = 0; i < count; ++i)
        texts.push_back(make(i));
    return texts;
}
}

std::u16string endpointId(unsigned int number)
{
    return u"{0.0.0.00000000}.{6f2b1c9e-4d3a-4be7-8c05-d19e7ab3" + hexadecimal(number, 4) + u"}";
}

std::u16string devicePath(unsigned int number)
{
    return u"{2}.\\\\?\\hdaudio#func_01&ven_0000&dev_0001&subsys_0000" + hexadecimal(number, 4) +
           u"&rev_1001#4&1a2b3c4d&0&0001#{6994ad04-93ef-11d0-a3cc-00a0c9223196}\\singlelineouttopo";
}

std::vector<std::u16string> endpointIds(unsigned int count)
{
    return made(count, endpointId);
}

std::vector<std::u16string> devicePaths(unsigned int count)
{
    return made(count, devicePath);
}

qor::String ownText(const std::u16string& text)
{
    std::vector<unsigned short> units(text.begin(), text.end());
    units.push_back(0);
    return qor::String(units.data());
}

std::vector<qor::String> ownTexts(const std::vector<std::u16string>& texts)
{
    std::vector<qor::String> own;
    for (const std::u16string& text : texts)
        own.push_back(ownText(text));
    return own;
}

std::u16string capitals(std::u16string text)
{
    for (char16_t& unit : text)
    {
        if (unit >= u'a' && unit <= u'z')
            unit = static_cast<char16_t>(unit - (u'a' - u'A'));
    }
    return text;
}
}
