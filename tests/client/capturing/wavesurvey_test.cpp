#include "tests/client/capturing/surveytest.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class SurveyWaveDevices : public SurveyTest
{
protected:
    void startWith(std::vector<sim::WaveDevice> outputs, std::vector<sim::WaveDevice> inputs = {})
    {
        sim::Machine machine = machineWithOneEndpoint();
        machine.waveOut = std::move(outputs);
        machine.waveIn = std::move(inputs);
        start(std::move(machine));
    }
};

TEST_F(SurveyWaveDevices, RecordsTheirIdsAndResults)
{
    const std::vector<sim::WaveDevice> outputs = {{"first"}, {"second", 8, 0}, {""}};
    const std::vector<sim::WaveDevice> inputs = {{"third"}};
    startWith(outputs, inputs);

    const capturing::Survey found = survey();

    EXPECT_EQ(outputs, found.machine.waveOut);
    EXPECT_EQ(inputs, found.machine.waveIn);
    EXPECT_THAT(failuresOf(found), IsEmpty());
    EXPECT_THAT(found.notes, IsEmpty());
}

TEST_F(SurveyWaveDevices, KeepsTheSizeOfAnIdThatFails)
{
    startWith({{"first", 0, 7}});

    const capturing::Survey found = survey();

    EXPECT_EQ((std::vector<sim::WaveDevice>{{"?????", 0, 7}}), found.machine.waveOut);
    expectSame(found, replay(found));
}

TEST_F(SurveyWaveDevices, NotesADriverThatWritesNoId)
{
    startWith({{"first"}});
    simulation().faults().succeedWithNull("waveOutMessage").at(2);

    const capturing::Survey found = survey();

    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("waveOutMessage(0, 2065)", "", "null")));
    EXPECT_EQ((std::vector<sim::WaveDevice>{{"?????"}}), found.machine.waveOut);
    expectSame(found, replay(found));
}

TEST_F(SurveyWaveDevices, AsksForTheIdEvenIfItsSizeIsNull)
{
    startWith({{"first"}});
    simulation().faults().succeedWithNull("waveOutMessage").at(1);

    const capturing::Survey found = survey();

    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("waveOutMessage(0, 2066)", "", "null")));
    EXPECT_EQ((std::vector<sim::WaveDevice>{{"first"}}), found.machine.waveOut);
    expectSame(found, replay(found));
}

TEST_F(SurveyWaveDevices, NotesACountBeyondAllBounds)
{
    startWith({{"first"}}, {{"second"}});
    simulation().faults().fail("waveInGetNumDevs", 5000);

    const capturing::Survey found = survey();

    EXPECT_THAT(found.machine.waveIn, IsEmpty());
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("waveInGetNumDevs", "", "0x00001388")));
    expectSame(found, replay(found));
}
}
