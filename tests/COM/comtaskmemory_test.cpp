#include "COM/comptr.h"

#include "tests/support/librarytest.h"

using testing::IsEmpty;

namespace
{
typedef ComTaskMemStorage<unsigned short> Storage;

/// The machine's census counts task memory; on Windows, where the system owns it, the journal does not show its calls.
struct ComTaskMemory : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        sim::MachineBuilder builder;
        endpointId = builder.card("Card").speaker().id();
        run(builder.build());
    }

    /// A string that the machine has allocated and counts.
    unsigned short* idOfEndpoint()
    {
        const COMPtr<IMMDevice>::pointer device(simulation().device(endpointId));
        LPWSTR id = nullptr;
        EXPECT_EQ(S_OK, device->GetId(&id));
        simulation().journal().clear();
        return const_cast<unsigned short*>(platform::ucs2(id));
    }

    std::string endpointId;
};
}

TEST_F(ComTaskMemory, IsFreedOnceAndTheFieldIsNil)
{
    unsigned short* text = idOfEndpoint();
    ASSERT_EQ(1, simulation().census().taskBlocks());

    Storage::release(text);
    Storage::release(text);

    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(0, simulation().census().taskBlocks());
#if !defined(_WIN32)
    EXPECT_EQ(1u, simulation().journal().count("CoTaskMemFree"));
#endif
}

TEST_F(ComTaskMemory, IsNotFreedIfThereIsNone)
{
    unsigned short* text = Storage::nil();

    Storage::release(text);

    EXPECT_EQ(nullptr, text);
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(ComTaskMemory, IsFreedByTheLastOfItsCountedHandles)
{
    typedef qor::SharedResource<Storage, 1> Buffer;
    {
        const Buffer first(idOfEndpoint());
        const Buffer second(first);
        ASSERT_EQ(1, simulation().census().taskBlocks());
    }

    EXPECT_EQ(0, simulation().census().taskBlocks());
}
