#include "client/watching/retries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace sonavit::watching;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
class RetriesTake : public Test
{
protected:
    using Time = Retries<std::string>::Time;

    Retries<std::string> m_retries;
    const Time m_start = Time(1h);
};

TEST_F(RetriesTake, ReturnsWhatIsDueOnce)
{
    m_retries.begin("first", m_start);
    m_retries.begin("second", m_start + 1ms);

    EXPECT_EQ(m_start + 250ms, m_retries.due());
    EXPECT_THAT(m_retries.take(m_start + 249ms), IsEmpty());
    EXPECT_THAT(m_retries.take(m_start + 250ms), ElementsAre("first"));
    EXPECT_EQ(m_start + 251ms, m_retries.due());
    EXPECT_THAT(m_retries.take(m_start + 250ms), IsEmpty());
}

TEST_F(RetriesTake, ReturnsAFailureAgainAfterLongerPausesUntilTheLast)
{
    Time now = m_start;
    m_retries.begin("it", now);

    for (const auto pause : {250ms, 500ms, 1000ms, 2000ms, 4000ms, 8000ms})
    {
        now += pause;
        EXPECT_EQ(now, m_retries.due());
        EXPECT_THAT(m_retries.take(now), ElementsAre("it"));
        m_retries.fail("it", now);
    }

    EXPECT_EQ(sonavit::worker::Clock::never, m_retries.due());
    EXPECT_FALSE(m_retries.contains("it"));
}

TEST_F(RetriesTake, IsNotPutOffByOtherReadings)
{
    m_retries.begin("it", m_start);

    m_retries.fail("it", m_start + 249ms);
    m_retries.fail("other", m_start);

    EXPECT_EQ(m_start + 250ms, m_retries.due());
    EXPECT_THAT(m_retries.all(), ElementsAre("it"));
}

TEST_F(RetriesTake, BeginsAnewAfterAnotherAnnouncement)
{
    m_retries.begin("it", m_start);
    static_cast<void>(m_retries.take(m_start + 250ms));
    m_retries.fail("it", m_start + 250ms);

    m_retries.begin("it", m_start + 300ms);

    EXPECT_EQ(m_start + 550ms, m_retries.due());
}

TEST_F(RetriesTake, ReturnsNothingThatHasSucceeded)
{
    m_retries.begin("it", m_start);

    m_retries.succeed("it");

    EXPECT_THAT(m_retries.take(m_start + 1h), IsEmpty());
    EXPECT_EQ(sonavit::worker::Clock::never, m_retries.due());
}

TEST_F(RetriesTake, ReturnsWhatWasTakenAndNotTriedAfterHurry)
{
    m_retries.begin("it", m_start);
    static_cast<void>(m_retries.take(m_start + 250ms));

    m_retries.hurry(m_start + 500ms);

    EXPECT_THAT(m_retries.take(m_start + 500ms), ElementsAre("it"));
}
}
