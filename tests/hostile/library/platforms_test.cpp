// The object model on every hostile platform that it has to stand, see ../README.md for the others: each operation
// returns, and leaves behind what it leaves on any platform.
#include "tests/hostile/library/hostilelibrarytest.h"
#include "tests/hostile/library/usage.h"

#include <string>

namespace
{
using hostile::Platform;

class LibraryOnHostilePlatforms : public hostile::HostileLibraryTest, public testing::WithParamInterface<hostile::Topic>
{
protected:
    /// With errors only: these platforms make the object model say very much.
    LibraryOnHostilePlatforms() { qor::LogFactory::setPriority(qor::LoggerPriority::LOG_ERROR); }
    ~LibraryOnHostilePlatforms() noexcept override {} // the cards' own may throw

    /// Finds the cards of its share of the topic's platforms, one after the other, and calls @p use, the one of that
    /// number, with them.
    template<class Use>
    void onEach(std::size_t number, const Use& use)
    {
        constexpr std::size_t uses = 6;
        for (const Platform& platform : hostile::shareOf(GetParam(), number, uses))
        {
            if (!platform.beyondObjectModel.empty())
                continue;
            SCOPED_TRACE(platform.name);
            begin(platform);
            {
                qor::Array<SoundCard> cards = hostile::findCards();
                use(cards);
            }
            end();
        }
    }
};
}

TEST_P(LibraryOnHostilePlatforms, AnswersForEachCard)
{
    onEach(0, [](qor::Array<SoundCard>& cards) { hostile::askCards(cards); });
}

TEST_P(LibraryOnHostilePlatforms, FindsControlsOrSaysWhereTheGraphEnds)
{
    onEach(1, [](qor::Array<SoundCard>& cards) { hostile::findControls(cards); });
}

TEST_P(LibraryOnHostilePlatforms, WalksToNeighbours)
{
    onEach(2, [](qor::Array<SoundCard>& cards) { hostile::walkParts(cards); });
}

TEST_P(LibraryOnHostilePlatforms, WritesFormatsBack)
{
    onEach(3, [](qor::Array<SoundCard>& cards) { hostile::writeFormats(cards); });
}

TEST_P(LibraryOnHostilePlatforms, KeepsUpWithWhatIsAnnounced)
{
    onEach(4, [this](qor::Array<SoundCard>&) { hostile::announceEverything(simulation()); });
}

TEST_P(LibraryOnHostilePlatforms, FindsTheTrueCardsAgainWhenThePlatformIsHonest)
{
    onEach(5,
           [this](qor::Array<SoundCard>&)
           {
               beHonest();
               const qor::Array<SoundCard> first = hostile::findCards();
               const qor::Array<SoundCard> second = hostile::findCards();
               ASSERT_EQ(first.size(), second.size());
               for (unsigned int i = 0; i < first.size(); ++i)
                   EXPECT_EQ(first[i].deviceId().toUtf8(), second[i].deviceId().toUtf8());
           });
}

INSTANTIATE_TEST_SUITE_P(Topics, LibraryOnHostilePlatforms, testing::ValuesIn(hostile::topics()),
                         [](const auto& each) { return std::string(each.param.name); });
