// Whether null is freed, too. On Windows the journal does not show the system's CoTaskMemFree.
#include "COM/tasktext.h"
#include "tests/support/librarytest.h"

#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;
using NullText = TaskText::NullText;

namespace
{
struct TaskTextWithoutAString : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run(sim::MachineBuilder().build());
        simulation().journal().clear();
    }

    std::vector<std::string> calls() { return simulation().journal().entries().calls(); }
};
}

TEST_F(TaskTextWithoutAString, FreesNullByDefault)
{
    {
        const TaskText text;
        EXPECT_EQ(nullptr, text.get());
    }

    EXPECT_THAT(calls(), ElementsAre("CoTaskMemFree(null)"));
}

TEST_F(TaskTextWithoutAString, FreesNothingInTheFormThatSkipsNull)
{
    {
        const TaskText text(NullText::skipped);
        EXPECT_EQ(nullptr, text.get());
    }

    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(TaskTextWithoutAString, DoesTheSameWhenAnExceptionLeavesItsScope)
{
    const auto leave = [](NullText form)
    {
        const TaskText text(form);
        throw std::runtime_error("before the platform stores a string");
    };

    EXPECT_THROW(leave(NullText::skipped), std::runtime_error);
    EXPECT_THAT(calls(), IsEmpty());

    EXPECT_THROW(leave(NullText::freed), std::runtime_error);
    EXPECT_THAT(calls(), ElementsAre("CoTaskMemFree(null)"));
}
