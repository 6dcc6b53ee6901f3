#include "sonavit/system.h"
#include "tests/support/clienttest.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <utility>

using namespace sonavit;

namespace
{
class ForkedChild : public support::ClientTest
{
};

bool isEnded(const Problem& problem)
{
    return problem.kind() == Problem::Kind::ended;
}

bool areQuestionsEnded(System& audio, const CardId& card)
{
    return isEnded(audio.refresh().problem()) && isEnded(audio.graph().problem()) &&
           isEnded(audio.graph(card).problem()) && isEnded(audio.selectors(card).problem()) &&
           isEnded(audio.controls(EndpointId("any")).problem()) && isEnded(audio.settings().problem()) &&
           !audio.endpoint(EndpointId("any")) && !audio.defaultEndpoint(Flow::output) && audio.find("0").empty() &&
           !audio.refer(EndpointId("any"));
}

bool areChangesEnded(System& audio, const CardId& card)
{
    const EndpointId any("any");
    return isEnded(audio.setMute(any, true).problem()) && isEnded(audio.toggleMute(any).problem()) &&
           isEnded(audio.setVolume(any, Percent(40)).problem()) &&
           isEnded(audio.setControl(any, "any", Percent(40)).problem()) &&
           isEnded(audio.setControlMute(any, ControlId("any"), true).problem()) &&
           isEnded(audio.select(card, "any", "any").problem()) && isEnded(audio.select("any", "any").problem()) &&
           isEnded(audio.holdFormat(any, Format::integer(16, 44100, 2)).problem()) &&
           isEnded(audio.restore(Settings()).problem());
}

/// The number of the first check that fails; 0 if none does.
int checkOperations(System& audio, std::unique_ptr<Subscription> subscription, const CardId& card, Result<Watch> watch,
                    Result<FormatHold> hold)
{
    const Snapshot snapshot = audio.snapshot();
    if (!snapshot.cards().empty() || snapshot.problems().size() != 1 || !isEnded(snapshot.problems()[0]))
        return 1;
    if (!areQuestionsEnded(audio, card))
        return 2;
    if (!isEnded(audio.watch(card).problem()))
        return 3;
    if (!areChangesEnded(audio, card))
        return 4;
    const Subscription heard = audio.subscribe([](const Change&) {});
    if (heard.isActive() || !heard.lastProblem() || !isEnded(*heard.lastProblem()))
        return 5;
    if (subscription->isActive())
        return 6;
    subscription.reset();
    watch->stop();
    if (!isEnded(hold->end().problem()))
        return 8;
    System fresh;
    if (!isEnded(fresh.refresh().problem()))
        return 7;
    return 0;
}

TEST_F(ForkedChild, GetsAProblemFromEveryOperationAndEndsWithoutWaiting)
{
    play("desktop");
    auto audio = std::make_unique<System>(options());
    auto subscription = std::make_unique<Subscription>(audio->subscribe([](const Change&) {}));
    const EndpointId speakers = audio->defaultEndpoint(Flow::output)->id();
    const CardId card = audio->snapshot().cardOf(speakers)->id();
    Result<Watch> watch = audio->watch(card);
    Result<FormatHold> hold = audio->holdFormat(speakers, Format::integer(16, 44100, 2));
    ASSERT_TRUE(watch && hold);

    const pid_t child = fork();
    if (child == 0)
    {
        const int failed = checkOperations(*audio, std::move(subscription), card, std::move(watch), std::move(hold));
        audio.reset();
        _exit(failed);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));

    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
    EXPECT_TRUE(audio->refresh());
    EXPECT_TRUE(hold->end());
}
}
