// Levels and mutes of endpoints and of parts.
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/volumechangenotification.h"
#include "tests/faults/library/choice.h"
#include "tests/faults/library/operation.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace faults::library
{
namespace
{
using Volume = VolumeControllerInterface;
using Ask = std::string (*)(Volume&);

std::string textOf(float value)
{
    char text[32] = {};
    std::snprintf(text, sizeof text, "%.3f", static_cast<double>(value));
    return text;
}

std::string yesOrNo(const char* what, bool value)
{
    return what + std::string(value ? " yes" : " no");
}

/// The volume of an endpoint.
VolumeController<EndpointVolumeController> endpointVolume(sim::Simulation& simulation)
{
    const std::string id = endpointWithVolume(simulation.machine());
    EndpointVolumeController policy;
    policy.endpointVolume = owned(id.empty() ? nullptr : simulation.endpointVolume(id));
    policy.ownerName = "endpoint";
    return VolumeController<EndpointVolumeController>(policy);
}

/// The volume of a part, with a mute.
VolumeController<RegularVolumeController> partVolume(sim::Simulation& simulation)
{
    const std::string level = partWithVolume(simulation.machine());
    const std::string mute = partWithMute(simulation.machine());
    RegularVolumeController policy;
    policy.volumeLevel = owned(level.empty() ? nullptr : simulation.volumeLevel(level));
    policy.mute = owned(mute.empty() ? nullptr : simulation.mute(mute));
    policy.ownerName = "part";
    return VolumeController<RegularVolumeController>(policy);
}

bool isUsable(const VolumeController<EndpointVolumeController>& volume)
{
    return volume.m_policy.endpointVolume.get() != nullptr;
}

bool isUsable(const VolumeController<RegularVolumeController>& volume)
{
    return volume.m_policy.volumeLevel.get() != nullptr && volume.m_policy.mute.get() != nullptr;
}

template<class Policy>
Operation asking(const std::string& name, VolumeController<Policy> (*make)(sim::Simulation&), Ask ask,
                 std::vector<Effect> effects)
{
    const auto perform = [=](Run& run)
    {
        VolumeController<Policy> volume = make(run.simulation());
        const bool hasVolume = isUsable(volume);
        run.act(
            [&]
            {
                if (hasVolume)
                    run.answer(ask(volume));
            });
        if (hasVolume)
            run.later(ask(volume));
    };
    return {name, perform, nullptr, std::move(effects)};
}

// The questions, each with a word that its answer begins with.

std::string channels(Volume& volume)
{
    return "channels " + std::to_string(volume.numChannel());
}

std::string percent(Volume& volume)
{
    return "percent " + std::to_string(volume.volumeLevelPercent(0));
}

std::string decibel(Volume& volume)
{
    return "decibel " + textOf(volume.volumeLevelDecibel(0));
}

std::string range(Volume& volume)
{
    Volume::DbVolumeRange range = {7, 7, 7};
    const bool isKnown = volume.volumeRangeDecibel(0, range);
    return yesOrNo("range", isKnown) + " " + textOf(range.minLevel) + " " + textOf(range.maxLevel) + " " +
           textOf(range.stepping);
}

std::string masterPercent(Volume& volume)
{
    return "percent " + std::to_string(volume.masterVolumeLevelPercent());
}

std::string masterDecibel(Volume& volume)
{
    return "decibel " + textOf(volume.masterVolumeLevelDecibel());
}

std::string setPercent(Volume& volume)
{
    return yesOrNo("set", volume.setVolumeLevelPercent(0, 40));
}

std::string setDecibel(Volume& volume)
{
    return yesOrNo("set", volume.setVolumeLevelDecibel(0, -6.0f));
}

std::string setMasterPercent(Volume& volume)
{
    return yesOrNo("set", volume.setMasterVolumeLevelPercent(30));
}

std::string setMasterDecibel(Volume& volume)
{
    return yesOrNo("set", volume.setMasterVolumeLevelDecibel(-9.0f));
}

std::string muted(Volume& volume)
{
    return yesOrNo("muted", volume.isMuted());
}

std::string setMute(Volume& volume)
{
    return yesOrNo("set", volume.setMute(true) && volume.setMute(false));
}

template<class Policy>
void copyVolume(Run& run, VolumeController<Policy> volume)
{
    run.act(
        [&]
        {
            VolumeController<Policy> copy(volume);
            copy = volume;
            copy.initialize(volume.m_policy);
        });
    run.later(volume.ownerName().toUtf8());
}

/// Ends the use of @p notification. One that the platform does not let go stays for good, within reach.
void letGo(Run& run, VolumeChangeNotification* notification)
{
    static std::vector<VolumeChangeNotification*>& kept = *new std::vector<VolumeChangeNotification*>;
    if (notification->Release() == 0)
        return;
    kept.push_back(notification);
    const std::vector<Fault>& faults = run.record().faults;
    if (std::none_of(faults.begin(), faults.end(),
                     [](const Fault& fault)
                     { return fault.call.entry.operation == "IAudioEndpointVolume::UnregisterControlChangeNotify"; }))
        run.report(Kind::references, "a notification is kept that the platform has let go");
}

/// Registers two notifications, one in place of the other, and ends the controller.
void notify(Run& run)
{
    VolumeChangeNotification* const notifications[] = {new VolumeChangeNotification, new VolumeChangeNotification};
    for (VolumeChangeNotification* const notification : notifications)
        notification->AddRef(); // handles adopt the first reference
    auto* volume = new VolumeController<EndpointVolumeController>(endpointVolume(run.simulation()));
    const bool hasVolume = isUsable(*volume);
    bool isRegistered = false;
    run.act(
        [&]
        {
            const COMPtr<VolumeChangeNotification>::pointer first(notifications[0]);
            const COMPtr<VolumeChangeNotification>::pointer second(notifications[1]);
            const bool isFirst = volume->registerVolumeChangeNotification(first);
            isRegistered = volume->registerVolumeChangeNotification(second) && isFirst;
            delete std::exchange(volume, nullptr); // a Release may throw here
        });
    delete volume;
    for (VolumeChangeNotification* const notification : notifications)
        letGo(run, notification);
    run.answer(yesOrNo("registered", isRegistered));
    VolumeController<EndpointVolumeController> again = endpointVolume(run.simulation());
    const COMPtr<VolumeChangeNotification>::pointer notification(new VolumeChangeNotification);
    if (hasVolume)
        run.later(yesOrNo("registered", again.registerVolumeChangeNotification(notification)));
}

/// A change of the volume reaches the notification, which calls a function and posts a message.
void hearOfChange(Run& run)
{
    int calls = 0;
    const std::string id = endpointWithVolume(run.simulation().machine());
    VolumeController<EndpointVolumeController> volume = endpointVolume(run.simulation());
    const COMPtr<VolumeChangeNotification>::pointer notification(new VolumeChangeNotification);
    notification->setCallbackFunction([](void* context) { ++*static_cast<int*>(context); }, &calls);
    volume.registerVolumeChangeNotification(notification);
    run.act(
        [&]
        {
            if (!id.empty())
                run.simulation().events().setVolume(id, -3.0f);
        });
    run.answer("calls " + std::to_string(calls));
    if (!id.empty())
        run.simulation().events().setVolume(id, -4.0f);
    run.later("calls " + std::to_string(calls));
}

void addEndpointOperations(std::vector<Operation>& all)
{
    const std::string name = "VolumeController<EndpointVolumeController>::";
    const auto add = [&](const char* operation, Ask ask, std::vector<Effect> effects)
    { all.push_back(asking(name + operation, endpointVolume, ask, std::move(effects))); };
    const std::string calls = "IAudioEndpointVolume::";
    const auto reading = [&](const char* call, const char* word, const char* failed, const char* nothing) {
        return std::vector<Effect>{{calls + call, "fail", word, failed}, {calls + call, "null", word, nothing}};
    };
    const auto refused = [&](const char* call) { return std::vector<Effect>{{calls + call, "fail", "set ", "no"}}; };
    add("numChannel", channels, reading("GetChannelCount(*", "channels ", "0", "0"));
    add("volumeLevelPercent", percent, reading("GetChannelVolumeLevelScalar(*", "percent ", "0", "0"));
    add("volumeLevelDecibel", decibel, reading("GetChannelVolumeLevel(*", "decibel ", "0.000", "0.000"));
    add("volumeRangeDecibel", range, reading("GetVolumeRange(*", "range ", "no *", "yes 0.000 0.000 0.000"));
    add("masterVolumeLevelPercent", masterPercent, reading("GetMasterVolumeLevelScalar(*", "percent ", "0", "0"));
    add("masterVolumeLevelDecibel", masterDecibel, reading("GetMasterVolumeLevel(*", "decibel ", "0.000", "0.000"));
    add("setVolumeLevelPercent", setPercent, refused("SetChannelVolumeLevelScalar(*"));
    add("setVolumeLevelDecibel", setDecibel, refused("SetChannelVolumeLevel(*"));
    add("setMasterVolumeLevelPercent", setMasterPercent, refused("SetMasterVolumeLevelScalar(*"));
    add("setMasterVolumeLevelDecibel", setMasterDecibel, refused("SetMasterVolumeLevel(*"));
    add("isMuted", muted, reading("GetMute(*", "muted ", "yes", "no"));
    add("setMute", setMute, refused("SetMute(*"));
}

void addPartOperations(std::vector<Operation>& all)
{
    const std::string name = "VolumeController<RegularVolumeController>::";
    const auto add = [&](const char* operation, Ask ask, std::vector<Effect> effects)
    { all.push_back(asking(name + operation, partVolume, ask, std::move(effects))); };
    const std::vector<Effect> refused = {{"IAudioVolumeLevel::SetLevel*", "fail", "set ", "no"},
                                         {"IAudioMute::SetMute(*", "fail", "set ", "no"}};
    add("numChannel", channels, {{"IAudioVolumeLevel::GetChannelCount(*", "*", "channels ", "0"}});
    // What a range that is not known makes of a percentage is arithmetic.
    add("volumeLevelPercent", percent, {{"IAudioVolumeLevel::*", "*", "percent ", "*"}});
    add("volumeLevelDecibel", decibel, {{"IAudioVolumeLevel::GetLevel(*", "*", "decibel ", "0.000"}});
    add("volumeRangeDecibel", range,
        {{"IAudioVolumeLevel::GetLevelRange(*", "fail", "range ", "no *"},
         {"IAudioVolumeLevel::GetLevelRange(*", "null", "range ", "yes 0.000 0.000 0.000"}});
    add("masterVolumeLevelPercent", masterPercent, {{"IAudioVolumeLevel::*", "*", "percent ", "*"}});
    add("masterVolumeLevelDecibel", masterDecibel, {{"IAudioVolumeLevel::*", "*", "decibel ", "*"}});
    add("setVolumeLevelPercent", setPercent, refused);
    add("setVolumeLevelDecibel", setDecibel, refused);
    add("setMasterVolumeLevelPercent", setMasterPercent, {});
    add("setMasterVolumeLevelDecibel", setMasterDecibel, refused);
    add("isMuted", muted,
        {{"IAudioMute::GetMute(*", "fail", "muted ", "yes"}, {"IAudioMute::GetMute(*", "null", "muted ", "no"}});
    add("setMute", setMute, refused);
}
}

std::vector<Operation> volumeOperations()
{
    std::vector<Operation> all;
    addEndpointOperations(all);
    addPartOperations(all);
    all.push_back({"VolumeController<EndpointVolumeController> copies",
                   [](Run& run) { copyVolume(run, endpointVolume(run.simulation())); }});
    all.push_back({"VolumeController<RegularVolumeController> copies",
                   [](Run& run) { copyVolume(run, partVolume(run.simulation())); }});
    all.push_back(
        {"registerVolumeChangeNotification", notify, nullptr,
         std::vector<Effect>{{"IAudioEndpointVolume::RegisterControlChangeNotify(*", "fail", "registered ", "no"}}});
    all.push_back({"VolumeChangeNotification::OnNotify", hearOfChange, nullptr, std::vector<Effect>{}});
    return all;
}
}
