#include "COM/tasktext.h"

#include "COM/comptr.h"
#include "tests/support/librarytest.h"

#include <stdexcept>

using NullText = TaskText::NullText;

namespace
{
/// The machine's census counts the strings.
struct TaskTextObject : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        sim::MachineBuilder builder;
        endpointId = builder.card("Card").speaker().id();
        run(builder.build());
    }

    long texts() { return simulation().census().taskBlocks(); }

    std::string endpointId;
};
}

TEST_F(TaskTextObject, FreesItsStringAtTheEndOfItsScopeInBothForms)
{
    const COMPtr<IMMDevice>::pointer device(simulation().device(endpointId));
    for (const NullText form : {NullText::freed, NullText::skipped})
    {
        {
            TaskText text(form);
            ASSERT_EQ(S_OK, device->GetId(text.put()));
            EXPECT_NE(nullptr, text.get());
            EXPECT_EQ(1, texts());
        }

        EXPECT_EQ(0, texts());
    }
}

TEST_F(TaskTextObject, FreesItsStringWhenAnExceptionLeavesItsScope)
{
    const COMPtr<IMMDevice>::pointer device(simulation().device(endpointId));
    for (const NullText form : {NullText::freed, NullText::skipped})
    {
        try
        {
            TaskText text(form);
            device->GetId(text.put());
            ASSERT_EQ(1, texts());
            throw std::runtime_error("while the string is in use");
        }
        catch (const std::runtime_error&)
        {
        }

        EXPECT_EQ(0, texts());
    }
}
