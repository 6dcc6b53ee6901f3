#include "simulator/core/argumenttext.h"

#include "simulator/core/interfaces.h"
#include "simulator/core/sampleformat.h"
#include "simulator/core/utf16.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

namespace sim
{
namespace
{
constexpr GUID enumeratorClass = {0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
}

std::string argumentText(REFIID iid)
{
    if (const char* const name = interfaceName(iid))
        return name;
    return IsEqualGUID(iid, enumeratorClass) ? "MMDeviceEnumerator" : guidText(iid);
}

std::string argumentText(const PROPERTYKEY& key)
{
    return keyText(key);
}

std::string argumentText(const WCHAR* text)
{
    return text == nullptr ? "null" : utf8(text);
}

std::string argumentText(const std::string& text)
{
    return text;
}

std::string argumentText(const GUID* context)
{
    return context == nullptr ? "null" : guidText(*context);
}

std::string argumentText(EDataFlow flow)
{
    static constexpr const char* names[] = {"eRender", "eCapture", "eAll"};
    return flow >= eRender && flow <= eAll ? names[flow] : std::to_string(static_cast<int>(flow));
}

std::string argumentText(ERole role)
{
    static constexpr const char* names[] = {"eConsole", "eMultimedia", "eCommunications"};
    return role >= eConsole && role <= eCommunications ? names[role] : std::to_string(static_cast<int>(role));
}

std::string argumentText(AUDCLNT_SHAREMODE mode)
{
    if (mode == AUDCLNT_SHAREMODE_SHARED)
        return "shared";
    return mode == AUDCLNT_SHAREMODE_EXCLUSIVE ? "exclusive" : std::to_string(static_cast<int>(mode));
}

std::string argumentText(AUDIO_STREAM_CATEGORY category)
{
    return std::to_string(static_cast<int>(category));
}

std::string argumentText(const WAVEFORMATEX* format)
{
    if (format == nullptr)
        return "null";
    const std::optional<SampleFormat> samples = sampleFormat(*format);
    return samples ? samples->text() : resultText(format->wFormatTag);
}

std::string argumentText(float number)
{
    return decimal(number);
}
}
