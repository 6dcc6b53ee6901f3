// Lists of endpoints, and the shared enumerator.
#include "benchmarks/direct/client.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/benchmarks/direct/supportvalues.h"
#include "tests/faults/library/choice.h"
#include "tests/faults/library/operation.h"

namespace faults::library
{
namespace
{
using directvalues::Lines;

std::string sizesOf(const EndpointDeviceEnumeratorCommon& lists)
{
    return std::to_string(lists.activeDevice().size()) + " active, " + std::to_string(lists.notPresentDevice().size()) +
           " not present, " + std::to_string(lists.disabledDevice().size()) + " disabled, " +
           std::to_string(lists.unpluggedDevice().size()) + " unplugged";
}

void answerWith(Run& run, const EndpointDeviceEnumeratorCommon& lists)
{
    Lines lines;
    directvalues::add(lines, lists);
    for (const std::string& line : lines)
        run.answer(line);
}

/// The devices in the first of the lists.
void answerWith(Run& run, const qor::Array<AudioDevice>& devices)
{
    EndpointDeviceEnumeratorCommon lists;
    for (unsigned int i = 0; i < devices.size(); ++i)
        lists.m_active.append(devices[i]);
    answerWith(run, lists);
}

Lines linesOf(const direct::StateLists& lists)
{
    Lines lines;
    directvalues::add(lines, lists);
    return lines;
}

void enumerate(Run& run)
{
    EndpointDeviceEnumeratorCommon lists;
    bool isDone = false;
    run.act([&] { isDone = lists.enumerate(eRender); });
    answerWith(run, lists);
    if (run.record().thrown.empty() && isDone != (lists.enumerator().get() != nullptr))
        run.report(Kind::answer, "enumerate() does not answer whether there is an enumerator");
    lists.enumerate(eRender);
    run.later(sizesOf(lists));
}

Lines modelOfEnumerate(sim::Simulation&, const std::function<void()>& arm)
{
    arm();
    return linesOf(direct::readStateLists(eRender));
}

void refresh(Run& run)
{
    EndpointDeviceEnumeratorCommon lists(eRender);
    run.act([&] { lists.refresh(eRender); });
    answerWith(run, lists);
    lists.refresh(eRender);
    run.later(sizesOf(lists));
}

Lines modelOfRefresh(sim::Simulation&, const std::function<void()>& arm)
{
    const direct::ComPtr<IMMDeviceEnumerator> enumerator = direct::createEnumerator();
    arm();
    direct::StateLists lists;
    lists.active = direct::readEndpoints(*enumerator.get(), eRender, DEVICE_STATE_ACTIVE);
    lists.disabled = direct::readEndpoints(*enumerator.get(), eRender, DEVICE_STATE_DISABLED);
    lists.notPresent = direct::readEndpoints(*enumerator.get(), eRender, DEVICE_STATE_NOTPRESENT);
    lists.unplugged = direct::readEndpoints(*enumerator.get(), eRender, DEVICE_STATE_UNPLUGGED);
    return linesOf(lists);
}

void copyLists(Run& run)
{
    EndpointDeviceEnumeratorCommon lists(eRender);
    EndpointDeviceEnumeratorCommon other(eCapture);
    run.act(
        [&]
        {
            const EndpointDeviceEnumeratorCommon copy = lists;
            other = copy;
            const qor::Array<AudioDevice> active = lists.activeDevice();
            const qor::Array<AudioDevice> unplugged = lists.unpluggedDevice();
        });
    run.later(sizesOf(lists));
}

void observe(Run& run)
{
    EndpointDeviceEnumeratorCommon lists(eRender);
    const auto first = SoundCard::SoundCardDeviceUpdater::createUpdater();
    const auto second = SoundCard::SoundCardDeviceUpdater::createUpdater();
    run.act(
        [&]
        {
            lists.registerNotificationObserver(first.get());
            lists.registerNotificationObserver(second.get());
        });
    for (const auto* const observer : {&first, &second})
        lists.enumerator()->UnregisterEndpointNotificationCallback(observer->get());
    lists.refresh(eRender);
    run.later(sizesOf(lists));
}

void listFlat(Run& run)
{
    const libSonavit::EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;
    unsigned int count = 0;
    run.act([&] { count = enumerator.audioDevices(eAll, devices); });
    answerWith(run, devices);
    if (run.record().thrown.empty() && count != devices.size())
        run.report(Kind::answer, "audioDevices() does not return the size of the list");
    run.later(std::to_string(enumerator.audioDevices(eAll, devices)) + " devices");
}

Lines modelOfFlatList(sim::Simulation&, const std::function<void()>& arm)
{
    const direct::ComPtr<IMMDeviceEnumerator> enumerator = direct::createEnumerator();
    arm();
    direct::StateLists lists;
    lists.active = direct::readEndpoints(*enumerator.get(), eAll, DEVICE_STATEMASK_ALL);
    return linesOf(lists);
}

void makeEnumerator(Run& run)
{
    run.act(
        [&]
        {
            const libSonavit::EndpointDeviceEnumerator enumerator;
            run.answer(std::string("initialized ") + (enumerator.isInitialized() ? "yes" : "no"));
            libSonavit::EndpointDeviceEnumerator copy = enumerator;
            copy = enumerator;
        });
    run.later(libSonavit::EndpointDeviceEnumerator().isInitialized() ? "initialized" : "not initialized");
}

void listShared(Run& run)
{
    libSonavit::AudioDeviceEnumerator& shared = *libSonavit::AudioDeviceEnumeratorFactory::enumerator();
    shared.deviceEnumerator();
    qor::Array<AudioDevice> devices;
    run.act([&] { shared.audioDevices(eAll, devices); });
    answerWith(run, devices);
    run.later(std::to_string(shared.audioDevices(eAll, devices)) + " devices");
}

void addClient(Run& run)
{
    const auto updater = SoundCard::SoundCardDeviceUpdater::createUpdater();
    updater->AddRef(); // the next handle adopts a reference
    const COMPtr<IMMNotificationClient>::pointer client(updater.get());
    bool isAdded = false;
    const auto add = [&]
    { return libSonavit::AudioDeviceEnumeratorFactory::enumerator()->addNotificationClient(client); };
    run.act([&] { isAdded = add(); });
    run.answer(std::string("added ") + (isAdded ? "yes" : "no"));
    run.later(add() ? "added" : "refused");
}
}

std::vector<Operation> listOperations()
{
    const std::vector<Effect> ofMaking = {{"CoCreateInstance(*", "*", "initialized ", "no"}};
    const std::vector<Effect> ofAdding = {
        {"CoCreateInstance(*", "*", "added ", "no"},
        {"IMMDeviceEnumerator::RegisterEndpointNotificationCallback(*", "fail", "added ", "no"}};
    return {{"EndpointDeviceEnumeratorCommon::enumerate", enumerate, modelOfEnumerate},
            {"EndpointDeviceEnumeratorCommon::refresh", refresh, modelOfRefresh},
            {"EndpointDeviceEnumeratorCommon copies", copyLists},
            {"EndpointDeviceEnumeratorCommon::registerNotificationObserver", observe},
            {"EndpointDeviceEnumerator", makeEnumerator, nullptr, ofMaking},
            {"EndpointDeviceEnumerator::audioDevices", listFlat, modelOfFlatList},
            {"AudioDeviceEnumerator::audioDevices", listShared, modelOfFlatList},
            {"AudioDeviceEnumerator::addNotificationClient", addClient, nullptr, ofAdding}};
}
}
