// The object model on every hostile platform that it has to stand, see ../README.md for the others: each operation
// returns, and leaves behind what it leaves on any platform.
#include "tests/hostile/library/hostilelibrarytest.h"
#include "tests/hostile/library/usage.h"

#include <set>
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
        onEachPlatform(number,
                       [&](const Platform& platform)
                       {
                           begin(platform);
                           {
                               qor::Array<SoundCard> cards = hostile::findCards();
                               use(cards);
                           }
                           end();
                       });
    }

    /// Calls @p use, the one of that number, with each of its share of the topic's platforms.
    template<class Use>
    void onEachPlatform(std::size_t number, const Use& use)
    {
        constexpr std::size_t uses = 8;
        for (const Platform& platform : hostile::shareOf(GetParam(), number, uses))
        {
            if (!platform.beyondObjectModel.empty())
                continue;
            SCOPED_TRACE(platform.name);
            use(platform);
        }
    }

    /// Whether what the platform gives for the id of an endpoint belongs to another device, see ../README.md.
    static bool takesOneEndpointForAnother(const Platform& platform)
    {
        const std::set<std::string> names = {"OneDeviceForEachId", "AnEmptyEndpointId", "AnEndpointWithAnInventedId",
                                             "AnEndpointWhosePartsHaveTheIdsOfAnAdapter"};
        return names.count(platform.name) != 0;
    }

    /// What the object model takes for the removed endpoint's, it may release for the last time.
    void allowReleasesOnRemoval()
    {
        simulation().onViolation(
            [](const sim::Violation& violation)
            {
                const bool isRemoval = violation.callback.find("::OnDeviceRemoved(") != std::string::npos;
                if (!isRemoval || violation.kind != sim::Violation::Kind::lastRelease)
                    ADD_FAILURE() << violation;
            });
    }

    /// What is found on the machine of @p platform if nothing has lied there before, nor failed.
    std::string truthOf(Platform platform)
    {
        platform.lie = nullptr;
        begin(platform);
        beHonest();
        std::string found = hostile::portraitOf(hostile::findCards());
        end();
        return found;
    }

    /// What is found after @p platform has lied, and then becomes honest.
    std::string foundAfterLies(const Platform& platform)
    {
        begin(platform);
        hostile::findCards();
        beHonest();
        std::string found = hostile::portraitOf(hostile::findCards());
        end();
        return found;
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
    onEachPlatform(4,
                   [this](const Platform& platform)
                   {
                       begin(platform);
                       if (takesOneEndpointForAnother(platform))
                           allowReleasesOnRemoval();
                       {
                           const qor::Array<SoundCard> cards = hostile::findCards();
                           hostile::announceEverything(simulation());
                       }
                       end();
                   });
}

TEST_P(LibraryOnHostilePlatforms, FindsTheTrueCardsAgainWhenThePlatformIsHonest)
{
    onEachPlatform(5, [this](const Platform& platform) { EXPECT_EQ(truthOf(platform), foundAfterLies(platform)); });
}

TEST_P(LibraryOnHostilePlatforms, FindsACardByItsId)
{
    onEach(6, [](qor::Array<SoundCard>& cards) { hostile::findById(cards); });
}

TEST_P(LibraryOnHostilePlatforms, HasOneDefaultAndRegistersForChangesOfVolume)
{
    onEach(7, [](qor::Array<SoundCard>& cards) { hostile::askForDefaultsAndChanges(cards); });
}

INSTANTIATE_TEST_SUITE_P(Topics, LibraryOnHostilePlatforms, testing::ValuesIn(hostile::topics()),
                         [](const auto& each) { return std::string(each.param.name); });
