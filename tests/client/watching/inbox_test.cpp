#include "client/watching/inbox.h"

#include "tests/foundation/supportallocations.h"
#include "tests/support/manualclock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

using namespace sonavit;
using namespace testing;

namespace
{
class InboxTake : public Test
{
protected:
    static std::string idOf(std::size_t number) { return "{0.0.0.00000000}." + std::to_string(number); }

    void note(std::size_t number, unsigned announced)
    {
        const std::string text = idOf(number);
        std::vector<WCHAR> id(text.begin(), text.end());
        id.push_back(0);
        if (announced == watching::announcedVolume)
            m_inbox.noteVolume(id.data(), nullptr);
        else
            m_inbox.noteEndpoint(id.data(), announced);
    }

    watching::Inbox m_inbox{std::make_shared<worker::Alarm>(), std::make_shared<support::ManualClock>()};
};

TEST_F(InboxTake, ReturnsEachEndpointOnceInTheOrderOfTheirFirstNotifications)
{
    for (std::size_t number = 0; number < watching::Inbox::capacity; ++number)
        note(number, watching::announcedProperty);
    for (std::size_t number = watching::Inbox::capacity; number > 0; --number)
        note(number - 1, watching::announcedState);

    const watching::Noted noted = m_inbox.take(true);

    EXPECT_FALSE(noted.isEverything);
    ASSERT_EQ(watching::Inbox::capacity, noted.endpoints.size());
    for (std::size_t number = 0; number < noted.endpoints.size(); ++number)
    {
        EXPECT_EQ(EndpointId(idOf(number)), noted.endpoints[number].id);
        EXPECT_EQ(watching::announcedProperty | watching::announcedState, noted.endpoints[number].announced);
    }
}

TEST_F(InboxTake, OfLevelsLeavesTheRestWhereLaterNotificationsFindIt)
{
    for (std::size_t number = 0; number < watching::Inbox::capacity; ++number)
        note(number, number % 2 == 0 ? watching::announcedVolume : watching::announcedProperty);

    EXPECT_EQ(watching::Inbox::capacity / 2, m_inbox.take(false).endpoints.size());
    for (std::size_t number = 0; number < watching::Inbox::capacity; ++number)
        note(number, watching::announcedState);
    const watching::Noted noted = m_inbox.take(true);

    EXPECT_FALSE(noted.isEverything);
    EXPECT_EQ(watching::Inbox::capacity, noted.endpoints.size());
}

TEST_F(InboxTake, ReturnsEverythingIfMoreEndpointsWereAnnouncedThanThereIsSpaceFor)
{
    for (std::size_t number = 0; number <= watching::Inbox::capacity; ++number)
        note(number, watching::announcedProperty);

    EXPECT_TRUE(m_inbox.take(true).isEverything);
    EXPECT_TRUE(m_inbox.take(true).isEmpty());
}

/// The platform calls while it holds locks, maybe without memory.
TEST_F(InboxTake, IsPreparedByNotificationsThatAllocateNothing)
{
    const std::string text = idOf(1);
    std::vector<WCHAR> id(text.begin(), text.end());
    id.push_back(0);
    const support::AllocationProbe probe;

    m_inbox.noteVolume(id.data(), nullptr);
    m_inbox.noteEndpoint(id.data(), watching::announcedProperty);
    m_inbox.noteDefaults(eRender);

    EXPECT_EQ(0u, probe.count());
}

/// Programs recognise their own changes by their tokens.
TEST_F(InboxTake, ReturnsTheTokensOfAllChangesOfAnEndpointEachOnce)
{
    const std::string text = idOf(1);
    std::vector<WCHAR> id(text.begin(), text.end());
    id.push_back(0);
    const watching::EventContexts& contexts = m_inbox.context();
    for (const ChangeToken token : {ChangeToken(7), ChangeToken(9), ChangeToken(7), ChangeToken(8)})
    {
        const GUID context = contexts.of(token);
        m_inbox.noteVolume(id.data(), &context);
    }

    const watching::Noted noted = m_inbox.take(false);

    ASSERT_EQ(1u, noted.endpoints.size());
    EXPECT_THAT(noted.endpoints[0].cause.tokens, ElementsAre(7, 9, 8));
    EXPECT_EQ(Origin::own, noted.endpoints[0].cause.origin);
}
}
