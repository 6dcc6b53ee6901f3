// The state that exhausted memory leaves behind while an endpoint device is created, read or listed. On Windows a DLL
// has allocation operators of its own, which a test cannot make fail.
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "qor/exception.h"
#include "tests/foundation/supportallocations.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/support/librarytest.h"

#include <functional>
#include <new>

namespace
{
using qor::LoggerPriority;
using support::AllocationProbe;

/// An endpoint that denies being one, so that it gets no volume controller: a controller whose share count cannot be
/// allocated is lost, as the handles require.
class DeviceWithoutController : public AudioDevice
{
public:
    bool isEndpoint() const override { return false; }
};

class AudioDeviceWithoutMemory : public support::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        sim::MachineBuilder builder;
        id = builder.card("Card").speaker().withoutTopology().id();
        run(support::withoutGuids(builder.build()));
        held = simulation().device(id);
        simulation().journal().record(false); // the machine must not allocate in Release
        qor::LogFactory::setSink([](const qor::LogRecord&) {});
        qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL);
    }

    void TearDown() override
    {
        held->Release();
        LibraryTest::TearDown();
    }

    /// A new reference on the device, which an AudioDevice adopts.
    IMMDevice* newReference()
    {
        held->AddRef();
        return held;
    }

    /// Whether @p action fails with one of its allocations failing.
    static bool failsAt(unsigned int allocation, const std::function<void(AllocationProbe&)>& action)
    {
        AllocationProbe probe;
        probe.failOnce(allocation);
        try
        {
            action(probe);
            return false;
        }
        catch (const std::bad_alloc&)
        {
            return true;
        }
        catch (const qor::NullPointer&)
        {
            return true;
        }
    }

    /// Calls @p action while the two arrays of the first AudioDevice that it creates cannot be allocated: first neither
    /// of them, then not the second one. After that the machine must hold no more than before.
    /// @param earlier the arrays that @p action allocates before
    void expectNoLossWithoutArrays(unsigned int earlier, const std::function<void()>& action)
    {
        for (unsigned int allocated = earlier; allocated < earlier + 2; ++allocated)
        {
            const sim::Census before = simulation().census();
            {
                AllocationProbe probe;
                probe.failNothrow(allocated);
                EXPECT_THROW(action(), qor::NullPointer) << allocated;
            }
            EXPECT_EQ(sim::Census(), simulation().census() - before) << allocated;
        }
    }

    std::string id;
    IMMDevice* held = nullptr; // the fixture holds one reference
};
}

TEST_F(AudioDeviceWithoutMemory, LosesNoReferenceAndNoStringWhicheverAllocationOfInitializeFails)
{
    const auto initialize = [this](AllocationProbe& probe)
    {
        DeviceWithoutController device;
        device.initialize(newReference());
        probe.succeed(); // the destructor allocates
    };
    const sim::Census before = simulation().census();

    unsigned int failures = 0;
    while (failsAt(failures, initialize))
    {
        ASSERT_EQ(sim::Census(), simulation().census() - before) << "after allocation " << failures;
        ++failures;
    }

    EXPECT_LT(20u, failures);
}

TEST_F(AudioDeviceWithoutMemory, ReleasesTheAdoptedReferenceWhenItsArraysCannotBeAllocated)
{
    expectNoLossWithoutArrays(0, [this] { const AudioDevice device(newReference()); });
}

TEST_F(AudioDeviceWithoutMemory, IsReleasedByTheListThatCannotHoldIt)
{
    const libSonavit::EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;
    EndpointDeviceEnumeratorCommon lists(eCapture);
    simulation().journal().record(true);

    // Clearing a list allocates its new block.
    expectNoLossWithoutArrays(1, [&] { enumerator.audioDevices(eRender, devices); });
    expectNoLossWithoutArrays(4, [&] { lists.refresh(eRender); });

    EXPECT_EQ(4u, simulation().journal().count("IMMDeviceCollection::Item"));
}
