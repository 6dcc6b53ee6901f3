// The client layer on every hostile platform: each operation returns, gives what is true of it, and leaves nothing
// behind; and the truth is read again when the platform tells it again.
#include "tests/client/watching/watchtest.h"
#include "tests/hostile/client/hostileclienttest.h"
#include "tests/hostile/client/usage.h"

namespace
{
using hostile::Platform;

class ClientOnHostilePlatforms : public hostile::HostileClientTest, public testing::WithParamInterface<hostile::Topic>
{
protected:
    /// Calls @p use on each platform of the topic in turn.
    template<class Use>
    void onEach(const Use& use)
    {
        for (const Platform& platform : GetParam().platforms())
        {
            SCOPED_TRACE(platform.name);
            begin(platform);
            use();
            end();
        }
    }
};
}

TEST_P(ClientOnHostilePlatforms, ReadsWhatThereIs)
{
    onEach([this] { hostile::readEverything(audio()); });
}

TEST_P(ClientOnHostilePlatforms, ChangesWhatCanBeChanged)
{
    onEach([this] { hostile::changeEverything(audio()); });
}

TEST_P(ClientOnHostilePlatforms, DescribesWhatThereIs)
{
    onEach([this] { hostile::describeEverything(audio()); });
}

TEST_P(ClientOnHostilePlatforms, KeepsUpWithWhatIsAnnounced)
{
    onEach([this] { hostile::announceEverything(audio(), simulation()); });
}

TEST_P(ClientOnHostilePlatforms, ReadsTheTruthAgainWhenItIsTold)
{
    onEach(
        [this]
        {
            static_cast<void>(audio().snapshot());
            beHonest();

            const sonavit::Result<sonavit::Snapshot> snapshot = audio().refresh(sonavit::Depth::everything);

            const sonavit::Result<sonavit::Snapshot> anew = newSnapshot();
            ASSERT_TRUE(snapshot && anew);
            EXPECT_EQ(support::withoutPast(*anew), support::withoutPast(*snapshot));
        });
}

INSTANTIATE_TEST_SUITE_P(Topics, ClientOnHostilePlatforms, testing::ValuesIn(hostile::topics()),
                         [](const auto& each) { return std::string(each.param.name); });
