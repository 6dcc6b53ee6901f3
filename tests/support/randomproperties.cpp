#include "tests/support/randomproperties.h"

#include "simulator/machine/deviceformat.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <cstring>
#include <string>
#include <utility>

namespace support
{
namespace
{
using sim::PropertyValue;

/// In the other case, letter by letter.
std::string inOtherCase(std::string text)
{
    for (char& c : text)
    {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
        else if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

/// A value that a reader of strings does not expect, or a string that it may not expect.
PropertyValue oddText(RandomChoice& choice)
{
    switch (choice.below(6))
    {
    case 0:
        return PropertyValue();
    case 1:
        return PropertyValue::ofText("");
    case 2:
        return PropertyValue::ofText(std::nullopt);
    case 3:
        return PropertyValue::ofNumber(choice.below(1000));
    case 4:
        return PropertyValue::ofBoolean(true);
    default:
        return PropertyValue::ofText("K\xC3\xBC"
                                     "che \xF0\x9F\x94\x8A \xE3\x82\xB9");
    }
}

template<class Make>
void changeSometimes(RandomChoice& choice, sim::Endpoint& endpoint, std::uint32_t percent, const PROPERTYKEY& key,
                     const Make& make)
{
    if (!choice.chance(percent))
        return;
    if (choice.chance(15))
        sim::removeProperty(endpoint.properties, key);
    else
        sim::setProperty(endpoint.properties, key, make(choice));
}

/// The path of another endpoint in other case, the empty one, one without a card.
PropertyValue oddPath(RandomChoice& choice, const sim::Machine& machine)
{
    const sim::Endpoint& other = machine.endpoints[choice.below(machine.endpoints.size())];
    const PropertyValue* const path = sim::findProperty(other.properties, sim::keys::instancePath);
    switch (choice.below(7))
    {
    case 0:
        return PropertyValue::ofText(path != nullptr && path->text ? inOtherCase(*path->text) : "{1}.X.Y");
    case 1:
        return PropertyValue::ofText("NODOTS");
    case 2:
        return PropertyValue::ofText("..{1}..USB\\VID_0001&PID_0001\\7..");
    case 3:
        return path != nullptr ? *path : PropertyValue();
    default:
        return oddText(choice);
    }
}

std::vector<std::uint8_t> bytesOf(const WAVEFORMATEXTENSIBLE& format, std::size_t size)
{
    std::vector<std::uint8_t> bytes(std::max(size, sizeof format));
    std::memcpy(bytes.data(), &format, sizeof format);
    bytes.resize(size);
    return bytes;
}

PropertyValue randomFormat(RandomChoice& choice)
{
    sim::DeviceFormat format;
    format.bits = choice.oneOf({8u, 16u, 24u, 32u});
    format.rate = choice.oneOf({8000u, 44100u, 48000u, 192000u});
    format.channels = 1 + choice.below(8);
    WAVEFORMATEXTENSIBLE wave = format.waveFormat();
    switch (choice.below(9))
    {
    case 0:
        wave.Format.wFormatTag = WAVE_FORMAT_PCM;
        wave.Format.cbSize = 0;
        return PropertyValue::ofBytes(bytesOf(wave, sizeof(WAVEFORMATEX)));
    case 1:
        wave.Format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
        return PropertyValue::ofBytes(bytesOf(wave, sizeof wave));
    case 2:
        wave.SubFormat = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
        return PropertyValue::ofBytes(bytesOf(wave, sizeof wave));
    case 3:
        wave.SubFormat.Data1 = 0x92; // AC-3 over S/PDIF
        wave.dwChannelMask = 0;
        return PropertyValue::ofBytes(bytesOf(wave, sizeof wave));
    case 4:
        return PropertyValue::ofBytes(bytesOf(wave, choice.oneOf<std::size_t>({0, 1, 17, 39, 41, 64})));
    case 5:
        return PropertyValue::ofBytes(std::vector<std::uint8_t>(sizeof wave));
    case 6:
        wave.Samples.wValidBitsPerSample = static_cast<WORD>(choice.below(33));
        return PropertyValue::ofBytes(bytesOf(wave, sizeof wave));
    case 7:
        return oddText(choice);
    default:
        return PropertyValue::ofBytes(format.bytes());
    }
}

PropertyValue randomSpeakers(RandomChoice& choice)
{
    if (choice.chance(20))
        return oddText(choice);
    return PropertyValue::ofNumber(choice.oneOf({0u, 3u, 0x3Fu, 0x63Fu, 0xFFFFFFFFu}));
}

/// The platform's string of a GUID, or something near it. The object model reads a value of any type as a string, so
/// there is none of another type.
PropertyValue randomGuidText(RandomChoice& choice)
{
    const std::string text = sim::guidText({0x12345678, 0x9ABC, 0xDEF0, {1, 2, 3, 4, 5, 6, 7, 8}});
    switch (choice.below(6))
    {
    case 0:
        return PropertyValue::ofText(text.substr(1, text.size() - 2));
    case 1:
        return PropertyValue::ofText("{no GUID}");
    case 2:
        return PropertyValue::ofText(sim::guidText({}));
    case 3:
        return PropertyValue::ofText("");
    case 4:
        return PropertyValue();
    default:
        return PropertyValue::ofText(inOtherCase(text));
    }
}

PropertyValue randomContainer(RandomChoice& choice)
{
    switch (choice.below(5))
    {
    case 0:
        return PropertyValue();
    case 1:
        return PropertyValue::ofGuid({});
    case 2:
        return PropertyValue::ofGuid({0, 0, 0, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}});
    case 3:
        return PropertyValue::ofGuid({0xC0117A1E, 0, 0, {0, 0, 0, 0, 0, 0, 0, static_cast<BYTE>(choice.below(2))}});
    default:
        return oddText(choice);
    }
}
}

void changeProperties(RandomChoice& choice, const sim::Machine& machine, sim::Endpoint& endpoint)
{
    namespace keys = sim::keys;
    const auto path = [&](RandomChoice& drawn) { return oddPath(drawn, machine); };
    changeSometimes(choice, endpoint, 20, keys::instancePath, path);
    changeSometimes(choice, endpoint, 12, keys::deviceDescription, oddText);
    changeSometimes(choice, endpoint, 12, keys::friendlyName, oddText);
    changeSometimes(choice, endpoint, 12, keys::driverNodeStrongName, oddText);
    changeSometimes(choice, endpoint, 12, keys::enumeratorName, oddText);
    changeSometimes(choice, endpoint, 40, keys::deviceFormat, randomFormat);
    changeSometimes(choice, endpoint, 25, keys::speakerConfig, randomSpeakers);
    changeSometimes(choice, endpoint, 20, keys::formFactor, randomSpeakers);
    changeSometimes(choice, endpoint, 25, keys::endpointGuid, randomGuidText);
    changeSometimes(choice, endpoint, 20, keys::jackSubType, randomGuidText);
    changeSometimes(choice, endpoint, 30, keys::containerId, randomContainer);
}
}
