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
    /// Calls @p use, the one of that number, on its share of the topic's platforms, one after the other.
    template<class Use>
    void onEach(std::size_t number, const Use& use)
    {
        constexpr std::size_t uses = 5;
        for (const Platform& platform : hostile::shareOf(GetParam(), number, uses))
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
    onEach(0, [this] { hostile::readEverything(audio()); });
}

TEST_P(ClientOnHostilePlatforms, ChangesWhatCanBeChanged)
{
    onEach(1, [this] { hostile::changeEverything(audio()); });
}

TEST_P(ClientOnHostilePlatforms, DescribesWhatThereIs)
{
    onEach(2, [this] { hostile::describeEverything(audio()); });
}

TEST_P(ClientOnHostilePlatforms, KeepsUpWithWhatIsAnnounced)
{
    onEach(3, [this] { hostile::announceEverything(audio(), simulation()); });
}

TEST_P(ClientOnHostilePlatforms, ReadsTheTruthAgainWhenItIsTold)
{
    onEach(4,
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
