#include "sonavit/system.h"
#include "tests/support/clienttest.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>

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

/// The number of the first check that fails; 0 if none does.
int checkOperations(System& audio, std::unique_ptr<Subscription> subscription, const CardId& card)
{
    const Snapshot snapshot = audio.snapshot();
    if (!snapshot.cards().empty() || snapshot.problems().size() != 1 || !isEnded(snapshot.problems()[0]))
        return 1;
    if (!isEnded(audio.refresh().problem()) || !isEnded(audio.graph().problem()))
        return 2;
    if (!isEnded(audio.watch(card).problem()))
        return 3;
    if (!isEnded(audio.setMute(EndpointId("any"), true).problem()))
        return 4;
    const Subscription heard = audio.subscribe([](const Change&) {});
    if (heard.isActive() || !heard.lastProblem() || !isEnded(*heard.lastProblem()))
        return 5;
    if (subscription->isActive())
        return 6;
    subscription.reset();
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
    const CardId card = audio->snapshot().cards().front().id();

    const pid_t child = fork();
    if (child == 0)
    {
        const int failed = checkOperations(*audio, std::move(subscription), card);
        audio.reset();
        _exit(failed);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));

    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
    EXPECT_TRUE(audio->refresh());
}
}
