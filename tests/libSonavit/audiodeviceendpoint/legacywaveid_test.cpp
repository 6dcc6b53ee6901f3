#include "libSonavit/soundcard.h"
#include "simulator/redirection.h"
#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"
#include "tests/libSonavit/supportchannels.h"

#include <algorithm>
#include <memory>

namespace
{
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr unsigned int none = 0xFFFFFFFF;

class AudioDeviceWaveId : public devicetest::DeviceTest
{
protected:
    /// Runs the machine, initializes a device on the endpoint and clears log and journal.
    void begin(const sim::EndpointBuilder& endpoint)
    {
        bench.withoutWaveIds();
        start();
        kept.directSoundTexts = 1;
        m_device = std::make_unique<AudioDevice>(reference(endpoint.id()));
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

TEST_F(AudioDeviceWaveId, OfAnEmptyDeviceIsNoneAndReported)
{
    AudioDevice empty;

    EXPECT_EQ(none, empty.waveLegacyDeviceID());

    EXPECT_THAT(records(), ElementsAre("> waveOutLegacyDeviceID", "> AudioDevice::dataFlow", "< AudioDevice::dataFlow",
                                       "3 Audio stream flow cannot be determined", "< waveOutLegacyDeviceID"));
}

TEST_F(AudioDeviceWaveId, OnTheAdapterSideIsNoneAndReported)
{
    start();
    AudioDevice adapter(reference(card.adapter().id));
    log.clear();

    EXPECT_EQ(none, adapter.waveLegacyDeviceID());

    EXPECT_THAT(log.texts(), ElementsAre("Audio stream flow cannot be determined"));
}

class AudioDeviceWaveIdScan : public AudioDeviceWaveId
{
protected:
    /// Wave devices of one direction with these endpoint ids.
    static std::vector<sim::WaveDevice> waveDevices(const std::vector<std::string>& ids)
    {
        std::vector<sim::WaveDevice> devices;
        for (const std::string& id : ids)
            devices.push_back({id});
        return devices;
    }

    sim::JournalEntries calls() { return simulation().journal().entries().without("IMMEndpoint::*"); }

    /// The calls of @p expected that the journal shows: on Windows the system allocates task memory.
    static std::vector<std::string> recorded(std::vector<std::string> expected)
    {
#if defined(_WIN32)
        const auto isHidden = [](const std::string& call) { return call.rfind("CoTaskMem", 0) == 0; };
        expected.erase(std::remove_if(expected.begin(), expected.end(), isHidden), expected.end());
#endif
        return expected;
    }

private:
    const sim::Redirection m_redirection{reinterpret_cast<const void*>(&enumerateSoundCards)};
};

TEST_F(AudioDeviceWaveIdScan, AsksEachNumberInTurnUntilTheIdIsFound)
{
    bench.machine().waveOut = waveDevices({"other", speaker.id(), "behind"});
    begin(speaker);

    EXPECT_EQ(1u, device().waveLegacyDeviceID());

    const std::string bytes = std::to_string(2 * (speaker.id().size() + 1));
    EXPECT_THAT(calls().calls(),
                ElementsAreArray(recorded(
                    {"waveOutGetNumDevs()", "waveOutMessage(0, 2066)", "CoTaskMemAlloc(12)", "waveOutMessage(0, 2065)",
                     "CoTaskMemFree(CoTaskMemAlloc)", "waveOutGetNumDevs()", "waveOutMessage(1, 2066)",
                     "CoTaskMemAlloc(" + bytes + ")", "waveOutMessage(1, 2065)", "CoTaskMemFree(CoTaskMemAlloc)"})));
    EXPECT_THAT(messages(LoggerPriority::LOG_INFO),
                ElementsAre("Wave out device " + speaker.id() + " has waveOut id = 1"));
    EXPECT_THAT(log.entered(channels::audioDevice), ElementsAre("waveOutLegacyDeviceID", "AudioDevice::dataFlow"));
}

TEST_F(AudioDeviceWaveIdScan, IsNoneWithoutAMessageWhenAllNumbersAreSearched)
{
    bench.machine().waveOut = waveDevices({"one", "two"});
    begin(speaker);

    EXPECT_EQ(none, device().waveLegacyDeviceID());

    EXPECT_EQ(3u, simulation().journal().count("waveOutGetNumDevs"));
    EXPECT_EQ(4u, simulation().journal().count("waveOutMessage"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceWaveIdScan, EndsAtTheFirstOfTwoNumbers)
{
    bench.machine().waveOut = waveDevices({"other", speaker.id(), speaker.id()});
    begin(speaker);

    EXPECT_EQ(1u, device().waveLegacyDeviceID());
}

TEST_F(AudioDeviceWaveIdScan, ComparesIdsCaseSensitively)
{
    const std::string upper = devicetest::upperCase(speaker.id());
    ASSERT_NE(upper, speaker.id());
    bench.machine().waveOut = waveDevices({upper, speaker.id()});
    begin(speaker);

    EXPECT_EQ(1u, device().waveLegacyDeviceID());
}

TEST_F(AudioDeviceWaveIdScan, SearchesInputsAmongInputMessagesWithTheSameWords)
{
    bench.machine().waveOut = waveDevices({microphone.id(), microphone.id()});
    bench.machine().waveIn = waveDevices({"other", microphone.id()});
    begin(microphone);

    EXPECT_EQ(1u, device().waveLegacyDeviceID());

    EXPECT_EQ(0u, simulation().journal().count("waveOutMessage"));
    EXPECT_EQ(4u, simulation().journal().count("waveInMessage"));
    EXPECT_THAT(messages(LoggerPriority::LOG_INFO),
                ElementsAre("Wave out device " + microphone.id() + " has waveOut id = 1"));
}

TEST_F(AudioDeviceWaveIdScan, FindsNoInputWhereThereAreNoOutputsAndSendsNothing)
{
    bench.machine().waveIn = waveDevices({microphone.id(), "other"});
    begin(microphone);

    EXPECT_EQ(none, device().waveLegacyDeviceID());

    EXPECT_THAT(calls().calls(), ElementsAre("waveOutGetNumDevs()"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceWaveIdScan, FindsNoInputBeyondTheNumberOfOutputs)
{
    bench.machine().waveOut = waveDevices({"one", "two", "three"});
    bench.machine().waveIn = waveDevices({"1", "2", "3", "4", microphone.id()});
    begin(microphone);

    EXPECT_EQ(none, device().waveLegacyDeviceID());

    EXPECT_EQ(6u, simulation().journal().count("waveInMessage"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceWaveIdScan, ReportsInputNumbersThatOnlyOutputsHave)
{
    bench.machine().waveOut = waveDevices({"one", "two", "three"});
    bench.machine().waveIn = waveDevices({"other"});
    begin(microphone);

    EXPECT_EQ(none, device().waveLegacyDeviceID());

    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING),
                ElementsAre("waveMessage returns an error 2", "waveMessage returns an error 2"));
}

TEST_F(AudioDeviceWaveIdScan, SkipsADriverThatRefusesTheSize)
{
    bench.machine().waveOut = {{speaker.id(), MMSYSERR_NOTSUPPORTED, 0}, {speaker.id()}};
    begin(speaker);

    EXPECT_EQ(1u, device().waveLegacyDeviceID());

    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("waveMessage returns an error 8"));
    EXPECT_EQ(3u, simulation().journal().count("waveOutMessage")) << "the size alone is asked of the first";
}

TEST_F(AudioDeviceWaveIdScan, SkipsADriverThatRefusesTheIdAndFreesTheBlock)
{
    bench.machine().waveOut = {{speaker.id(), 0, MMSYSERR_INVALPARAM}, {speaker.id()}};
    begin(speaker);

    EXPECT_EQ(1u, device().waveLegacyDeviceID());

    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("waveMessage returns an error 11"));
    EXPECT_EQ(4u, simulation().journal().count("waveOutMessage"));
#if !defined(_WIN32)
    EXPECT_EQ(2u, simulation().journal().of("CoTaskMemFree").with("CoTaskMemAlloc").size());
#endif
}

#if !defined(_WIN32) // where the system allocates task memory and never refuses it
TEST_F(AudioDeviceWaveIdScan, StopsWithoutMemory)
{
    bench.machine().waveOut = waveDevices({"other", "another", speaker.id()});
    begin(speaker);
    sim::PlannedFault fault = simulation().faults().fail("CoTaskMemAlloc", E_OUTOFMEMORY).at(2);

    EXPECT_EQ(none, device().waveLegacyDeviceID());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("Cannot allocate device id buffer"));
    EXPECT_EQ(3u, simulation().journal().count("waveOutMessage"));
    EXPECT_EQ(2u, simulation().journal().count("waveOutGetNumDevs"));
}

#endif

TEST_F(AudioDeviceWaveIdScan, EndsEarlierWhenADeviceIsUnpluggedMeanwhile)
{
    bench.machine().waveOut = waveDevices({"one", "two", speaker.id()});
    begin(speaker);
    sim::PlannedFault unplug = simulation().faults().run(
        "waveOutMessage", [this] { simulation().change([](sim::Machine& machine) { machine.waveOut.resize(2); }); });
    unplug.with("1").at(2);

    EXPECT_EQ(none, device().waveLegacyDeviceID());

    EXPECT_EQ(1u, unplug.fired());
    EXPECT_EQ(3u, simulation().journal().count("waveOutGetNumDevs"));
    EXPECT_EQ(0u, simulation().journal().of("waveOutMessage").with("2").size());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceWaveIdScan, SurvivesTheDeviceInQuestionBeingUnplugged)
{
    bench.machine().waveOut = waveDevices({"one", speaker.id()});
    begin(speaker);
    sim::PlannedFault unplug = simulation().faults().run(
        "waveOutMessage", [this] { simulation().change([](sim::Machine& machine) { machine.waveOut.resize(1); }); });
    unplug.with("1").at(2);

    EXPECT_EQ(none, device().waveLegacyDeviceID());

    EXPECT_EQ(1u, unplug.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("waveMessage returns an error 2"));
}

TEST_F(AudioDeviceWaveIdScan, FindsADeviceThatIsPluggedInMeanwhile)
{
    bench.machine().waveOut = waveDevices({"one"});
    begin(speaker);
    sim::PlannedFault plug = simulation().faults().run(
        "waveOutMessage",
        [this] { simulation().change([this](sim::Machine& machine) { machine.waveOut.push_back({speaker.id()}); }); });
    plug.at(1);

    EXPECT_EQ(1u, device().waveLegacyDeviceID());

    EXPECT_EQ(1u, plug.fired());
}

TEST_F(AudioDeviceWaveIdScan, TreatsAnUnknownFlowAsAnInput)
{
    bench.machine().waveOut = waveDevices({speaker.id()});
    bench.machine().waveIn = waveDevices({speaker.id()});
    begin(speaker);
    sim::PlannedFault fault = simulation().faults().fail("IMMEndpoint::GetDataFlow", E_FAIL);

    EXPECT_EQ(0u, device().waveLegacyDeviceID());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(0u, simulation().journal().count("waveOutMessage"));
    EXPECT_EQ(2u, simulation().journal().count("waveInMessage"));
}

TEST_F(AudioDeviceWaveIdScan, KeepsNoState)
{
    bench.machine().waveOut = waveDevices({speaker.id()});
    begin(speaker);
    EXPECT_EQ(0u, device().waveLegacyDeviceID());
    simulation().change([](sim::Machine& machine) { machine.waveOut.insert(machine.waveOut.begin(), {"first"}); });

    EXPECT_EQ(1u, device().waveLegacyDeviceID());
}

class AudioDeviceWaveMessage : public AudioDeviceWaveIdScan
{
};

TEST_F(AudioDeviceWaveMessage, GoesToTheFunctionOfTheFlowWithoutATrace)
{
    begin(speaker);

    EXPECT_EQ(MMSYSERR_BADDEVICEID, device().waveMessage(eRender, 1, 5, 0, 0));
    EXPECT_EQ(MMSYSERR_BADDEVICEID, device().waveMessage(eCapture, 2, 6, 0, 0));
    EXPECT_EQ(MMSYSERR_BADDEVICEID, device().waveMessage(eAll, 3, 7, 0, 0));

    EXPECT_THAT(calls().calls(), ElementsAre("waveOutMessage(1, 5)", "waveInMessage(2, 6)", "waveInMessage(3, 7)"));
    EXPECT_THAT(log.records(channels::audioDevice), IsEmpty());
}

TEST_F(AudioDeviceWaveMessage, WidensTheNumberWithItsSign)
{
    begin(speaker);

    device().waveMessage(eRender, 0xFFFFFFFF, 5, 0, 0);

    const std::string widened = std::to_string(~DWORD_PTR{0}); // 64 bits, except on 32-bit Windows
    EXPECT_THAT(calls().calls(), ElementsAre("waveOutMessage(" + widened + ", 5)"));
}

TEST_F(AudioDeviceWaveMessage, PassesBothParametersOn)
{
    bench.machine().waveOut = waveDevices({"ab"});
    begin(speaker);
    DWORD_PTR size = ~DWORD_PTR(0);
    WCHAR text[4] = {};

    EXPECT_EQ(0u, device().waveMessage(eRender, 0, 0x812, reinterpret_cast<DWORD_PTR>(&size), 0));
    EXPECT_EQ(0u, device().waveMessage(eRender, 0, 0x811, reinterpret_cast<DWORD_PTR>(text), size));

    EXPECT_EQ(6u, size);
    EXPECT_EQ(qor::String("ab"), qor::String(platform::ucs2(text)));
}
}
