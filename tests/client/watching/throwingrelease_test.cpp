#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace sonavit;
using namespace testing;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace
{
/// Every Release of the platform's objects throws.
class SystemWithThrowingReleases : public support::WatchTest
{
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        play("desktop").deliverAtOnce(true);
        simulation().faults().raise("Release");
    }
};

TEST_F(SystemWithThrowingReleases, ReadsWatchesChangesAndEnds)
{
    CaptureStderr();
    {
        System audio(polledOptions());
        const Snapshot snapshot = audio.snapshot();
        const std::optional<Endpoint> speakers = audio.defaultEndpoint(Flow::output);
        ASSERT_TRUE(speakers);
        const CardId card = snapshot.cardOf(speakers->id())->id();

        EXPECT_TRUE(audio.refresh(Depth::everything));
        EXPECT_EQ(snapshot, audio.snapshot());
        EXPECT_TRUE(audio.graph());
        EXPECT_TRUE(audio.controls(speakers->id()));
        EXPECT_TRUE(audio.selectors(card));
        EXPECT_TRUE(audio.watch(card));
        EXPECT_TRUE(audio.setVolume(speakers->id(), Percent(30)));
        simulation().events().remove(speakers->id().text());
        EXPECT_TRUE(audio.refresh());
        EXPECT_FALSE(audio.endpoint(speakers->id()));
    }
    EXPECT_EQ("", GetCapturedStderr());
}
}
