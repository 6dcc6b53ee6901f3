#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "tests/libSonavit/supportchannels.h"

#include <map>
#include <memory>
#include <set>
#include <thread>

namespace
{
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class AudioDeviceDataFlow : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
    }
};

TEST_F(AudioDeviceDataFlow, IsThatOfTheEndpoint)
{
    kept.directSoundTexts = 2;
    const AudioDevice output(reference(speaker.id()));
    const AudioDevice input(reference(microphone.id()));
    EDataFlow outputFlow = eAll;
    EDataFlow inputFlow = eAll;

    EXPECT_TRUE(output.dataFlow(outputFlow));
    EXPECT_TRUE(input.dataFlow(inputFlow));

    EXPECT_EQ(eRender, outputFlow);
    EXPECT_EQ(eCapture, inputFlow);
}

TEST_F(AudioDeviceDataFlow, OfAnEmptyDeviceIsUnchanged)
{
    const AudioDevice device;
    EDataFlow flow = eAll;

    EXPECT_FALSE(device.dataFlow(flow));

    EXPECT_EQ(eAll, flow);
    EXPECT_THAT(records(), ElementsAre("> AudioDevice::dataFlow", "< AudioDevice::dataFlow"));
}

TEST_F(AudioDeviceDataFlow, OfAnAdapterDeviceIsUnchanged)
{
    const AudioDevice device(reference(card.adapter().id));
    log.clear();
    EDataFlow flow = eAll;

    EXPECT_FALSE(device.dataFlow(flow));

    EXPECT_EQ(eAll, flow);
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceDataFlow, SucceedsEvenIfGetDataFlowFails)
{
    kept.directSoundTexts = 1;
    const AudioDevice device(reference(speaker.id()));
    sim::PlannedFault fault = simulation().faults().fail("IMMEndpoint::GetDataFlow", E_FAIL);
    EDataFlow flow = eAll;

    EXPECT_TRUE(device.dataFlow(flow));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(eAll, flow);
}

TEST_F(AudioDeviceDataFlow, IsFalseIfThePlatformSucceedsWithNull)
{
    kept.directSoundTexts = 1;
    const AudioDevice device(reference(speaker.id()));
    sim::PlannedFault fault = simulation().faults().succeedWithNull("IMMDevice::QueryInterface");
    EDataFlow flow = eAll;

    EXPECT_FALSE(device.dataFlow(flow));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(eAll, flow);
}

TEST_F(AudioDeviceDataFlow, KeepsNoReference)
{
    kept.directSoundTexts = 1;
    const AudioDevice device(reference(speaker.id()));
    EDataFlow flow = eAll;

    device.dataFlow(flow);

    EXPECT_EQ(1, references("IMMDevice " + speaker.id()));
}

class AudioDeviceIsDefault : public devicetest::DeviceTest
{
protected:
    /// Runs the machine, initializes a device on the speaker and clears log and journal.
    void begin()
    {
        start();
        kept.directSoundTexts = 1;
        m_device = std::make_unique<AudioDevice>(reference(speaker.id()));
        log.clear();
        simulation().journal().clear();
    }

    void TearDown() override
    {
        m_device.reset();
        DeviceTest::TearDown();
    }

    AudioDevice& device() { return *m_device; }

private:
    std::unique_ptr<AudioDevice> m_device;
};

TEST_F(AudioDeviceIsDefault, AnswersTrueForTheDefaultOfItsFlow)
{
    begin();
    kept.defaultDeviceIds = 1;

    EXPECT_TRUE(device().isDefaultEndpoint());
}

TEST_F(AudioDeviceIsDefault, AnswersFalseForAnother)
{
    sim::EndpointBuilder headphones = card.headphones();
    headphones.isDefault();
    begin();
    kept.defaultDeviceIds = 1;

    EXPECT_FALSE(device().isDefaultEndpoint());
}

TEST_F(AudioDeviceIsDefault, CountsTheConsoleRoleOnly)
{
    speaker.defaultFor(eCommunications).defaultFor(eMultimedia);
    card.headphones().defaultFor(eConsole);
    begin();
    kept.defaultDeviceIds = 1;

    EXPECT_FALSE(device().isDefaultEndpoint());
}

TEST_F(AudioDeviceIsDefault, AsksForTheDefaultOfAnInputsFlow)
{
    begin();
    kept.directSoundTexts = 2;
    kept.defaultDeviceIds = 1;
    const AudioDevice input(reference(microphone.id()));

    EXPECT_TRUE(input.isDefaultEndpoint());

    EXPECT_THAT(simulation().journal().of("IMMDeviceEnumerator::*").calls(),
                ElementsAre("IMMDeviceEnumerator::GetDefaultAudioEndpoint(eCapture, eConsole)"));
}

TEST_F(AudioDeviceIsDefault, ComparesTheIdsCaseSensitively)
{
    begin();
    kept.defaultDeviceIds = 1;
    const std::string upper = devicetest::upperCase(speaker.id());
    ASSERT_NE(upper, speaker.id());
    device().m_properties.deviceId = qor::String::fromUtf8(upper);

    EXPECT_FALSE(device().isDefaultEndpoint());
}

TEST_F(AudioDeviceIsDefault, LeavesTheStringOfTheIdAllocated)
{
    begin();
    const sim::Census before = simulation().census();

    device().isDefaultEndpoint();
    device().isDefaultEndpoint();

    const std::map<std::string, long> expected = {{"IMMDevice::GetId " + speaker.id(), 2}};
    EXPECT_EQ(expected, (simulation().census() - before).taskMemory);
    EXPECT_EQ(before.byObject, simulation().census().byObject);
    kept.defaultDeviceIds = 2;
}

TEST_F(AudioDeviceIsDefault, CallsThePlatformInThisOrder)
{
    sim::EndpointBuilder headphones = card.headphones();
    headphones.isDefault();
    begin();
    kept.defaultDeviceIds = 1;
    withoutDebugMessages();
    simulation().journal().recordReferences(true);

    device().isDefaultEndpoint();

    std::vector<std::string> calls;
    for (const sim::JournalEntry& entry : simulation().journal().entries().without("IMMDevice::AddRef"))
        calls.push_back(entry.call() + (entry.object.empty() ? "" : " on " + entry.object));
    const auto query =
        std::find(calls.begin(), calls.end(), "IMMDevice::QueryInterface(IMMEndpoint) on " + speaker.id());
    ASSERT_NE(calls.end(), query);
    EXPECT_EQ("CoCreateInstance(MMDeviceEnumerator, 1, IMMDeviceEnumerator)", calls.front());
    EXPECT_THAT(std::vector<std::string>(query + 1, calls.end()),
                ElementsAre("IMMEndpoint::GetDataFlow() on " + speaker.id(),
                            "IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, eConsole) on enumerator",
                            "IMMDevice::GetId() on " + headphones.id(), "IMMDeviceEnumerator::Release() on enumerator",
                            "IMMDevice::Release() on " + speaker.id(), "IMMDevice::Release() on " + headphones.id()));
}

TEST_F(AudioDeviceIsDefault, ReleasesEverythingBeforeItComparesAndOpensNoScope)
{
    begin();
    kept.defaultDeviceIds = 1;

    device().isDefaultEndpoint();

    EXPECT_THAT(records(), ElementsAre("1 enumerator RELEASED", "1 endpoint RELEASED", "1 pDefaultDevice RELEASED",
                                       "1 Are these Equal: " + speaker.id() + " ?= " + speaker.id()));
}

TEST_F(AudioDeviceIsDefault, CreatesItsOwnEnumeratorEachTime)
{
    begin();
    kept.defaultDeviceIds = 2;
    BorrowedPointer<IMMDeviceEnumerator> shared =
        libSonavit::AudioDeviceEnumeratorFactory::enumerator()->deviceEnumerator();
    simulation().journal().clear();

    device().isDefaultEndpoint();
    device().isDefaultEndpoint();

    EXPECT_EQ(2u, simulation().journal().count("CoCreateInstance"));
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
    EXPECT_NE(nullptr, shared.get());
}

TEST_F(AudioDeviceIsDefault, IsFalseIfTheFlowHasNoDefault)
{
    bench.withoutDefaults();
    begin();

    EXPECT_FALSE(device().isDefaultEndpoint());

    EXPECT_THAT(records(), ElementsAre("4 GetDefaultAudioEndpoint returns 0x80070490", "1 enumerator RELEASED",
                                       "1 endpoint RELEASED"));
}

/// One failing step of the search.
struct StepCase
{
    std::string name;
    std::string operation;
    std::vector<std::string> records;
};

void PrintTo(const StepCase& step, std::ostream* stream)
{
    *stream << step.name;
}

class AudioDeviceIsDefaultStep : public AudioDeviceIsDefault, public testing::WithParamInterface<StepCase>
{
};

TEST_P(AudioDeviceIsDefaultStep, ThatFailsIsLoggedAndReleasesTheInterfaces)
{
    begin();
    const sim::Census before = simulation().census();
    sim::PlannedFault fault = simulation().faults().fail(GetParam().operation, E_OUTOFMEMORY);

    EXPECT_FALSE(device().isDefaultEndpoint());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(records(), ElementsAreArray(GetParam().records));
    EXPECT_EQ(before, simulation().census());
}

INSTANTIATE_TEST_SUITE_P(
    Each, AudioDeviceIsDefaultStep,
    testing::Values(StepCase{"CoCreateInstance", "CoCreateInstance", {"4 CoCreateInstance returns 0x8007000E"}},
                    StepCase{"QueryInterface",
                             "IMMDevice::QueryInterface",
                             {"4 QueryInterface returns 0x8007000E", "1 enumerator RELEASED"}},
                    StepCase{"GetDataFlow",
                             "IMMEndpoint::GetDataFlow",
                             {"4 GetDataFlow returns 0x8007000E", "1 enumerator RELEASED", "1 endpoint RELEASED"}},
                    StepCase{"GetDefaultAudioEndpoint",
                             "IMMDeviceEnumerator::GetDefaultAudioEndpoint",
                             {"4 GetDefaultAudioEndpoint returns 0x8007000E", "1 enumerator RELEASED",
                              "1 endpoint RELEASED"}},
                    StepCase{"GetId",
                             "IMMDevice::GetId",
                             {"4 GetId returns 0x8007000E", "1 enumerator RELEASED", "1 endpoint RELEASED",
                              "1 pDefaultDevice RELEASED"}}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(AudioDeviceIsDefault, LogsEachStepAndEachReleaseFromALineOfItsOwn)
{
    begin();
    for (const char* const operation : {"CoCreateInstance", "IMMDevice::QueryInterface", "IMMEndpoint::GetDataFlow",
                                        "IMMDeviceEnumerator::GetDefaultAudioEndpoint", "IMMDevice::GetId"})
    {
        simulation().faults().fail(operation, E_OUTOFMEMORY);
        device().isDefaultEndpoint();
        simulation().faults().clear();
    }

    std::map<std::string, std::set<int>> linesOfMessage;
    std::set<int> lines;
    for (const support::LogCapture::Record& record : log.records(channels::audioDevice))
    {
        linesOfMessage[record.text].insert(record.line);
        lines.insert(record.line);
    }
    EXPECT_EQ(8u, linesOfMessage.size());
    EXPECT_EQ(8u, lines.size()) << "two messages share a line";
    for (const auto& [message, own] : linesOfMessage)
        EXPECT_EQ(1u, own.size()) << message;
}

TEST_F(AudioDeviceIsDefault, IsFalseIfThePlatformSucceedsWithNull)
{
    begin();
    sim::PlannedFault endpoint = simulation().faults().succeedWithNull("IMMDevice::QueryInterface").at(1);
    sim::PlannedFault other =
        simulation().faults().succeedWithNull("IMMDeviceEnumerator::GetDefaultAudioEndpoint").at(1);

    EXPECT_FALSE(device().isDefaultEndpoint());
    EXPECT_FALSE(device().isDefaultEndpoint());

    EXPECT_EQ(1u, endpoint.fired());
    EXPECT_EQ(1u, other.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR),
                ElementsAre("QueryInterface returns 0x00000000", "GetDefaultAudioEndpoint returns 0x00000000"));
}

TEST_F(AudioDeviceIsDefault, NeedsComOnTheCallersThread)
{
    begin();
    bool answer = true;

    std::thread([&] { answer = device().isDefaultEndpoint(); }).join();

    EXPECT_FALSE(answer);
    EXPECT_THAT(records(), ElementsAre("4 CoCreateInstance returns 0x800401F0"));
}
}
