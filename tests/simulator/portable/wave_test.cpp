#include "simulator/machine/file/machinefile.h"
#include "tests/simulator/bench.h"

namespace
{
using testing::ElementsAre;

class RuntimeWave : public bench::SimulationTest
{
protected:
    RuntimeWave()
    {
        simulation.change(
            [&](sim::Machine& machine)
            {
                machine.waveOut = {
                    {speakerId, 0, 0}, {earphoneId, MMSYSERR_NODRIVER, 0}, {earphoneId, 0, MMSYSERR_ERROR}};
                machine.waveIn = {{lineInId, 0, 0}};
            });
    }

    static HWAVEOUT out(std::uintptr_t id) { return reinterpret_cast<HWAVEOUT>(id); }

    static HWAVEIN in(std::uintptr_t id) { return reinterpret_cast<HWAVEIN>(id); }

    static DWORD_PTR address(void* place) { return reinterpret_cast<DWORD_PTR>(place); }
};

TEST_F(RuntimeWave, CountsTheOutputs)
{
    EXPECT_EQ(3u, waveOutGetNumDevs());

    simulation.change([](sim::Machine& machine) { machine.waveOut.pop_back(); });
    EXPECT_EQ(2u, waveOutGetNumDevs());
}

TEST_F(RuntimeWave, CountsTheInputsByThemselves)
{
    EXPECT_EQ(1u, waveInGetNumDevs());

    simulation.change([this](sim::Machine& machine) { machine.waveIn.assign(5, {lineInId, 0, 0}); });
    EXPECT_EQ(5u, waveInGetNumDevs());
    EXPECT_EQ(2u, simulation.journal().count("waveInGetNumDevs"));
}

TEST_F(RuntimeWave, TellsTheSizeInBytesAndThenTheId)
{
    DWORD_PTR size = 0;
    EXPECT_EQ(MMSYSERR_NOERROR, waveOutMessage(out(0), DRV_QUERYFUNCTIONINSTANCEIDSIZE, address(&size), 0));
    ASSERT_EQ(2 * (speakerId.size() + 1), size);

    std::vector<WCHAR> id(size / sizeof(WCHAR), 7);
    EXPECT_EQ(MMSYSERR_NOERROR, waveOutMessage(out(0), DRV_QUERYFUNCTIONINSTANCEID, address(id.data()), size));
    EXPECT_EQ(speakerId, sim::utf8(id.data()));
}

TEST_F(RuntimeWave, ReturnsThePlannedCodeToOneQuestionOfOneDevice)
{
    const auto sizeOf = [](std::uintptr_t id)
    {
        DWORD_PTR size = 0;
        return waveOutMessage(out(id), DRV_QUERYFUNCTIONINSTANCEIDSIZE, address(&size), 0);
    };
    simulation.faults()
        .fail("waveOutMessage", static_cast<HRESULT>(MMSYSERR_INVALPARAM))
        .with(std::vector<std::string>{"0", std::to_string(DRV_QUERYFUNCTIONINSTANCEIDSIZE)});

    EXPECT_EQ(MMSYSERR_INVALPARAM, sizeOf(0));
    EXPECT_EQ(MMSYSERR_NOERROR, sizeOf(2));
}

TEST_F(RuntimeWave, CountsAsPlanned)
{
    simulation.faults().fail("waveOutGetNumDevs", HRESULT{7});
    simulation.faults().fail("waveInGetNumDevs", static_cast<HRESULT>(0xFFFFFFFF));

    EXPECT_EQ(7u, waveOutGetNumDevs());
    EXPECT_EQ(0xFFFFFFFFu, waveInGetNumDevs());
}

TEST_F(RuntimeWave, CountsAndAnswersAsAMachineFileSays)
{
    const sim::Simulation other(sim::readMachine(R"({"name": "m", "waveOut": ["a", "b", "c"], "faults": [
        {"operation": "waveOutGetNumDevs", "result": "0x00000002"},
        {"operation": "waveOutMessage", "arguments": ["1"], "result": "0x0000000B"}]})",
                                                 "m.json"));
    DWORD_PTR size = 0;

    EXPECT_EQ(2u, waveOutGetNumDevs());
    EXPECT_EQ(MMSYSERR_NOERROR, waveOutMessage(out(0), DRV_QUERYFUNCTIONINSTANCEIDSIZE, address(&size), 0));
    EXPECT_EQ(MMSYSERR_INVALPARAM, waveOutMessage(out(1), DRV_QUERYFUNCTIONINSTANCEIDSIZE, address(&size), 0));
}

TEST_F(RuntimeWave, HasInputsOfTheirOwn)
{
    WCHAR id[128] = {};
    EXPECT_EQ(MMSYSERR_NOERROR, waveInMessage(in(0), DRV_QUERYFUNCTIONINSTANCEID, address(id), sizeof id));
    EXPECT_EQ(lineInId, sim::utf8(id));
    EXPECT_EQ(MMSYSERR_BADDEVICEID, waveInMessage(in(1), DRV_QUERYFUNCTIONINSTANCEID, address(id), sizeof id));
}

TEST_F(RuntimeWave, RefusesWhatTheMachineSaysItRefuses)
{
    DWORD_PTR size = 99;
    WCHAR id[128] = {};
    EXPECT_EQ(MMSYSERR_NODRIVER, waveOutMessage(out(1), DRV_QUERYFUNCTIONINSTANCEIDSIZE, address(&size), 0));
    EXPECT_EQ(99u, size);
    EXPECT_EQ(MMSYSERR_NOERROR, waveOutMessage(out(2), DRV_QUERYFUNCTIONINSTANCEIDSIZE, address(&size), 0));
    EXPECT_EQ(MMSYSERR_ERROR, waveOutMessage(out(2), DRV_QUERYFUNCTIONINSTANCEID, address(id), sizeof id));
}

TEST_F(RuntimeWave, RefusesUnknownIdsMessagesAndPlaces)
{
    DWORD_PTR size = 0;
    WCHAR id[2] = {};
    EXPECT_EQ(MMSYSERR_BADDEVICEID, waveOutMessage(out(3), DRV_QUERYFUNCTIONINSTANCEIDSIZE, address(&size), 0));
    EXPECT_EQ(MMSYSERR_BADDEVICEID,
              waveOutMessage(out(~std::uintptr_t{0}), DRV_QUERYFUNCTIONINSTANCEIDSIZE, address(&size), 0));
    EXPECT_EQ(MMSYSERR_NOTSUPPORTED, waveOutMessage(out(0), 0x800, address(&size), 0));
    EXPECT_EQ(MMSYSERR_INVALPARAM, waveOutMessage(out(0), DRV_QUERYFUNCTIONINSTANCEIDSIZE, 0, 0));
    EXPECT_EQ(MMSYSERR_INVALPARAM, waveOutMessage(out(0), DRV_QUERYFUNCTIONINSTANCEID, address(id), sizeof id));
}

TEST_F(RuntimeWave, WritesIdAndMessageIntoTheJournal)
{
    simulation.journal().clear();
    simulation.faults().fail("waveInMessage", static_cast<HRESULT>(MMSYSERR_NOMEM));

    EXPECT_EQ(MMSYSERR_NOMEM, waveInMessage(in(0), DRV_QUERYFUNCTIONINSTANCEIDSIZE, 0, 0));
    waveOutMessage(out(1), DRV_QUERYFUNCTIONINSTANCEIDSIZE, 0, 0);

    EXPECT_THAT(simulation.journal().entries().lines(),
                ElementsAre("waveInMessage(0, 2066) -> 0x00000007", "waveOutMessage(1, 2066) -> 0x00000006"));
}
}
