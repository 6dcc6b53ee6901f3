#include "tests/client/reading/readingtest.h"

namespace
{
using sonavit::EndpointId;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT invalidData = static_cast<HRESULT>(0x8007000D);

/// Two outputs, and one input more than outputs.
class ReadingWaveIds : public ReadingTest
{
protected:
    ReadingWaveIds()
    {
        m_machine.waveOut = {{"{out}.0", 0, 0}, {"{out}.1", 0, 0}};
        m_machine.waveIn = {{"{in}.0", 0, 0}, {"{in}.1", 0, 0}, {"{in}.2", 0, 0}};
    }

    reading::WaveIds readIds()
    {
        play(m_machine);
        return reading::readWaveIds();
    }

    sim::Machine m_machine;
};

TEST_F(ReadingWaveIds, AreThoseOfEachFlow)
{
    const reading::WaveIds all = readIds();

    EXPECT_THAT(all.ids[0], ElementsAre(EndpointId("{out}.0"), EndpointId("{out}.1")));
    EXPECT_THAT(all.ids[1], ElementsAre(EndpointId("{in}.0"), EndpointId("{in}.1"), EndpointId("{in}.2")));
    EXPECT_THAT(all.problems, IsEmpty());
}

/// The numbers are counted once for each flow, and each is asked for the size of its id and for the id.
TEST_F(ReadingWaveIds, AreReadInOnePass)
{
    static_cast<void>(readIds());

    EXPECT_EQ(1u, simulation().journal().count("waveOutGetNumDevs"));
    EXPECT_EQ(1u, simulation().journal().count("waveInGetNumDevs"));
    EXPECT_EQ(4u, simulation().journal().count("waveOutMessage"));
    EXPECT_EQ(6u, simulation().journal().count("waveInMessage"));
    EXPECT_EQ(12u, simulation().journal().size());
}

TEST_F(ReadingWaveIds, ThatADriverRefusesAreProblemsAndTheOthersStay)
{
    m_machine.waveOut[0].sizeResult = MMSYSERR_NODRIVER;
    m_machine.waveIn[1].idResult = MMSYSERR_ERROR;

    const reading::WaveIds all = readIds();

    EXPECT_THAT(all.ids[0], ElementsAre(EndpointId(), EndpointId("{out}.1")));
    EXPECT_THAT(all.ids[1], ElementsAre(EndpointId("{in}.0"), EndpointId(), EndpointId("{in}.2")));
    EXPECT_THAT(all.problems, ElementsAre(IsFailureOf("waveOutMessage(0)", MMSYSERR_NODRIVER),
                                          IsFailureOf("waveInMessage(1)", MMSYSERR_ERROR)));
}

TEST_F(ReadingWaveIds, AreEmptyIfTheDriverReportsSuccessAndStoresNothing)
{
    play(m_machine);
    simulation().faults().succeedWithNull("waveOutMessage").with("1");

    const reading::WaveIds all = reading::readWaveIds();

    EXPECT_THAT(all.ids[0], ElementsAre(EndpointId("{out}.0"), EndpointId()));
    EXPECT_THAT(all.problems, ElementsAre(IsFailureOf("waveOutMessage(1)", invalidData)));
}

TEST_F(ReadingWaveIds, AreNotAskedForByTheThousand)
{
    m_machine.waveOut.resize(5000);

    const reading::WaveIds all = readIds();

    EXPECT_THAT(all.ids[0], IsEmpty());
    EXPECT_EQ(3u, all.ids[1].size());
    EXPECT_THAT(all.problems, ElementsAre(IsFailureOf("waveOutGetNumDevs", invalidData)));
    EXPECT_EQ(0u, simulation().journal().count("waveOutMessage"));
}

TEST_F(ReadingWaveIds, DoNotBelieveInIdsOfMegabytes)
{
    m_machine.waveOut[0].endpointId.assign(1000000, 'x');

    const reading::WaveIds all = readIds();

    EXPECT_THAT(all.ids[0], ElementsAre(EndpointId(), EndpointId("{out}.1")));
    EXPECT_THAT(all.problems, ElementsAre(IsFailureOf("waveOutMessage(0)", invalidData)));
}
}
