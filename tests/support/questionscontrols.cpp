#include "tests/support/questionshardware.h"

#include <algorithm>
#include <array>

namespace support
{
namespace
{
/// Controls that the examiner has no questions for: gain control, loudness, bass, peak meter, formats, output selector;
/// and nothing.
constexpr std::array<GUID, 7> otherControls = {
    {{0x85401FD4, 0x6DE4, 0x4B9D, {0x98, 0x69, 0x2D, 0x67, 0x53, 0xA8, 0x2F, 0x3C}},
     {0x7D8B1437, 0xDD53, 0x4350, {0x9C, 0x1B, 0x1E, 0xE2, 0x89, 0x0B, 0xD9, 0x38}},
     {0xA2B1A1D9, 0x4DB3, 0x425D, {0xA2, 0xB2, 0xBD, 0x33, 0x5C, 0xB3, 0xE2, 0xE5}},
     {0xDD79923C, 0x0599, 0x45E0, {0xB8, 0xB6, 0xC8, 0xDF, 0x7D, 0xB6, 0xE7, 0x96}},
     {0x3CB4A69D, 0xBB6F, 0x4D2B, {0x95, 0xB7, 0x45, 0x2D, 0x2C, 0x15, 0x5D, 0xB5}},
     {0xBB515F69, 0x94A7, 0x429E, {0x8B, 0x9C, 0x27, 0x1B, 0x3F, 0x11, 0xA3, 0xAB}},
     {0xB5E3C9A2, 0x3C44, 0x4F2D, {0x8E, 0x6B, 0x0C, 0x61, 0x7F, 0x0D, 0x9A, 0x03}}}};

template<class I>
bench::Held<I> activateOf(Notes& notes, const std::string& name, IPart& part, const IID& iid)
{
    bench::Held<I> control;
    const HRESULT result = part.Activate(CLSCTX_ALL, iid, control.putVoid());
    notes.addObject(callText("IPart::Activate", answerText(iid)), name, result, control);
    return control;
}

template<class I>
bench::Held<I> activateOf(Notes& notes, const std::string& name, IPart& part)
{
    return activateOf<I>(notes, name, part, sim::InterfaceTraits<I>::iid());
}

/// @return what the part lists
std::vector<IID> askDescriptions(Notes& notes, const std::string& name, IPart& part)
{
    std::vector<IID> listed;
    UINT count = 0;
    if (!notes.add("IPart::GetControlInterfaceCount", name, part.GetControlInterfaceCount(&count), count))
        count = 0;
    for (UINT index = 0; index <= believable(count); ++index)
    {
        bench::Held<IControlInterface> description;
        const std::string number = answerText(index);
        const std::string place = "control " + number + " of " + name;
        const HRESULT result = part.GetControlInterface(index, description.put());
        if (!notes.addObject(callText("IPart::GetControlInterface", number), name, result, description))
            continue;
        LPWSTR text = nullptr;
        GUID iid = {};
        const HRESULT named = description->GetName(&text);
        notes.addText("IControlInterface::GetName", place, named, text);
        if (notes.add("IControlInterface::GetIID", place, description->GetIID(&iid), iid))
            listed.push_back(iid);
    }
    return listed;
}

void askLevel(Notes& notes, const std::string& name, IAudioVolumeLevel& level)
{
    UINT count = 0;
    if (!notes.add("IAudioVolumeLevel::GetChannelCount", name, level.GetChannelCount(&count), count))
        return; // channels that are not counted are not listed
    for (UINT channel = 0; channel <= believable(count); ++channel)
    {
        float values[3] = {};
        const std::string number = answerText(channel);
        const HRESULT ranged = level.GetLevelRange(channel, &values[0], &values[1], &values[2]);
        notes.add(callText("IAudioVolumeLevel::GetLevelRange", number), name, ranged,
                  answerText(values[0]) + " to " + answerText(values[1]) + " by " + answerText(values[2]));
        notes.add(callText("IAudioVolumeLevel::GetLevel", number), name, level.GetLevel(channel, &values[0]),
                  values[0]);
    }
}

void askJacks(Notes& notes, const std::string& name, IKsJackDescription& jacks)
{
    UINT count = 0;
    if (!notes.add("IKsJackDescription::GetJackCount", name, jacks.GetJackCount(&count), count))
        return;
    for (UINT jack = 0; jack <= believable(count); ++jack)
    {
        KSJACK_DESCRIPTION description = {};
        notes.add(callText("IKsJackDescription::GetJackDescription", answerText(jack)), name,
                  jacks.GetJackDescription(jack, &description), description);
    }
}

void askJacks(Notes& notes, const std::string& name, IKsJackDescription2& jacks)
{
    UINT count = 0;
    if (!notes.add("IKsJackDescription2::GetJackCount", name, jacks.GetJackCount(&count), count))
        return;
    for (UINT jack = 0; jack <= believable(count); ++jack)
    {
        KSJACK_DESCRIPTION2 description = {};
        notes.add(callText("IKsJackDescription2::GetJackDescription2", answerText(jack)), name,
                  jacks.GetJackDescription2(jack, &description), description);
    }
}

void askKnownControls(Notes& notes, const std::string& name, IPart& part)
{
    const auto level = activateOf<IAudioVolumeLevel>(notes, name, part);
    if (level.get() != nullptr)
        askLevel(notes, name, *level.get());
    const auto mute = activateOf<IAudioMute>(notes, name, part);
    BOOL isMuted = FALSE;
    if (mute.get() != nullptr)
        notes.add("IAudioMute::GetMute", name, mute->GetMute(&isMuted), isMuted);
    const auto selector = activateOf<IAudioInputSelector>(notes, name, part);
    UINT selection = 0;
    if (selector.get() != nullptr)
        notes.add("IAudioInputSelector::GetSelection", name, selector->GetSelection(&selection), selection);
}
}

void askControls(Notes& notes, const std::string& name, IPart& part)
{
    std::vector<IID> others(otherControls.begin(), otherControls.end());
    const std::vector<IID> listed = askDescriptions(notes, name, part);
    askKnownControls(notes, name, part);
    const auto jacks = activateOf<IKsJackDescription>(notes, name, part);
    if (jacks.get() != nullptr)
        askJacks(notes, name, *jacks.get());
    const auto furtherJacks = activateOf<IKsJackDescription2>(notes, name, part);
    if (furtherJacks.get() != nullptr)
        askJacks(notes, name, *furtherJacks.get());
    activateOf<IUnknown>(notes, name, part);
    activateOf<IPart>(notes, name, part);
    activateOf<IPerChannelDbLevel>(notes, name, part);
    for (const IID& iid : listed)
    {
        const auto isSame = [&](const IID& other) { return IsEqualGUID(iid, other); };
        const bool isKnown = sim::interfaceName(iid) != nullptr;
        if (!isKnown && std::none_of(others.begin(), others.end(), isSame))
            others.push_back(iid);
    }
    for (const IID& iid : others)
        activateOf<IUnknown>(notes, name, part, iid);
}
}
