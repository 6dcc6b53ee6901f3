#include "libSonavit/endpointdeviceenumerator.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <memory>
#include <type_traits>

using libSonavit::EndpointDeviceEnumerator;
using qor::LoggerPriority;
using support::namesOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace
{
constexpr const char* destructorLabel = "EndpointDeviceEnumerator::~EndpointDeviceEnumerator()";

static_assert(!std::is_polymorphic_v<EndpointDeviceEnumerator>, "it has no virtual operation");
static_assert(sizeof(EndpointDeviceEnumerator) == sizeof(void*), "the handle is its only field");

struct FlatListTest : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run(support::endpointsInAllStates());
    }

    /// Clears log and journal.
    void forget()
    {
        log.clear();
        simulation().journal().clear();
    }
};

struct EndpointDeviceEnumeratorLife : FlatListTest
{
};
struct EndpointDeviceEnumeratorAudioDevices : FlatListTest
{
};
}

TEST_F(EndpointDeviceEnumeratorLife, CreatesItsOwnEnumerator)
{
    const EndpointDeviceEnumerator enumerator;

    EXPECT_TRUE(enumerator.isInitialized());
    EXPECT_THAT(simulation().journal().entries().calls(),
                ElementsAre("CoCreateInstance(MMDeviceEnumerator, 1, IMMDeviceEnumerator)"));
    EXPECT_THAT(log.entered(), ElementsAre("EndpointDeviceEnumerator::EndpointDeviceEnumerator()",
                                           "EndpointDeviceEnumerator::initialize()"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointDeviceEnumeratorLife, IsNotInitializedWhenTheCreationFails)
{
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance", E_OUTOFMEMORY);

    const EndpointDeviceEnumerator enumerator;

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(enumerator.isInitialized());
    EXPECT_EQ(nullptr, enumerator.enumerator().get());
    EXPECT_THAT(log.texts(), ElementsAre("CoCreateInstance returns 0x8007000E"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR, channels::deviceEnumerator),
                ElementsAre("CoCreateInstance returns 0x8007000E"));
}

TEST_F(EndpointDeviceEnumeratorLife, IsNotInitializedWhenTheCreationSucceedsWithNothing)
{
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("CoCreateInstance");

    const EndpointDeviceEnumerator enumerator;

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(enumerator.isInitialized());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointDeviceEnumeratorLife, GivesItsHandleWithoutAFurtherReference)
{
    const EndpointDeviceEnumerator enumerator;

    EXPECT_EQ(&enumerator.m_enumerator, &enumerator.enumerator());
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
}

TEST_F(EndpointDeviceEnumeratorLife, SharesTheEnumeratorWithItsCopiesWithoutARecord)
{
    const EndpointDeviceEnumerator enumerator;
    forget();

    const EndpointDeviceEnumerator copy(enumerator);

    EXPECT_EQ(enumerator.enumerator().get(), copy.enumerator().get());
    EXPECT_EQ(2, simulation().census().references("IMMDeviceEnumerator"));
    EXPECT_EQ(3u, comReferenceCount(copy.enumerator().get())); // with the platform's own
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(EndpointDeviceEnumeratorLife, TakesTheAssignedEnumeratorBeforeItReleasesItsOwn)
{
    const EndpointDeviceEnumerator source;
    EndpointDeviceEnumerator target;
    forget();
    simulation().journal().recordReferences(true);

    target = source;

    EXPECT_THAT(simulation().journal().operations(),
                ElementsAre("IMMDeviceEnumerator::AddRef", "IMMDeviceEnumerator::Release"));
    EXPECT_EQ(source.enumerator().get(), target.enumerator().get());
    EXPECT_THAT(log.records(), IsEmpty());
    simulation().journal().recordReferences(false);
}

TEST_F(EndpointDeviceEnumeratorLife, ChangesNothingWhenItIsAssignedToItself)
{
    EndpointDeviceEnumerator enumerator;
    const EndpointDeviceEnumerator& same = enumerator;
    forget();
    simulation().journal().recordReferences(true);

    enumerator = same;

    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
    EXPECT_TRUE(enumerator.isInitialized());
    simulation().journal().recordReferences(false);
}

TEST_F(EndpointDeviceEnumeratorLife, ReleasesTheEnumeratorWithinTheScopeOfItsDestructor)
{
    std::vector<std::string> entered;
    std::vector<std::string> left;
    const sim::PlannedFault release = simulation().faults().run("IMMDeviceEnumerator::Release",
                                                                [&]
                                                                {
                                                                    entered = log.entered(channels::deviceEnumerator);
                                                                    left = log.left(channels::deviceEnumerator);
                                                                });
    auto enumerator = std::make_unique<EndpointDeviceEnumerator>();
    const std::uint32_t before = release.fired();

    enumerator.reset();

    EXPECT_EQ(before + 1, release.fired());
    EXPECT_THAT(entered, Contains(destructorLabel));
    EXPECT_THAT(left, Not(Contains(destructorLabel)));
    EXPECT_THAT(log.left(channels::deviceEnumerator), Contains(destructorLabel));
    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
}

TEST_F(EndpointDeviceEnumeratorLife, ReleasesTheFormerEnumeratorWhenItIsInitializedAgain)
{
    EndpointDeviceEnumerator enumerator;
    simulation().journal().clear();
    simulation().journal().recordReferences(true);

    EXPECT_TRUE(enumerator.initialize());

    const std::vector<std::string> operations = simulation().journal().operations();
    EXPECT_EQ("IMMDeviceEnumerator::Release", operations.at(0));
    EXPECT_EQ("CoCreateInstance", operations.at(1));
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
    simulation().journal().recordReferences(false);
}

TEST_F(EndpointDeviceEnumeratorLife, HasNoEnumeratorIfItCannotBeInitializedAgain)
{
    EndpointDeviceEnumerator enumerator;
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance");

    EXPECT_FALSE(enumerator.initialize());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(enumerator.isInitialized());
    EXPECT_EQ(0, simulation().census().references("IMMDeviceEnumerator"));
}

TEST_F(EndpointDeviceEnumeratorAudioDevices, ListsTheEndpointsOfAFlowInEveryStateInTheSystemsOrder)
{
    const EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;

    EXPECT_EQ(5u, enumerator.audioDevices(eRender, devices));

    EXPECT_THAT(namesOf(devices), ElementsAre("Unplugged", "Active", "Not present", "Disabled", "Second active"));
    EXPECT_THAT(simulation().journal().of("IMMDeviceEnumerator::*").calls(),
                ElementsAre("IMMDeviceEnumerator::EnumAudioEndpoints(eRender, 15)"));
}

TEST_F(EndpointDeviceEnumeratorAudioDevices, LogsTheMaskInPlaceOfAnIndexAndOpensNoScope)
{
    const EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;
    forget();

    enumerator.audioDevices(eRender, devices);

    EXPECT_THAT(log.texts(channels::deviceEnumerator), ElementsAre("Device state index 15 found 5 devices"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::deviceEnumerator),
                ElementsAre("Device state index 15 found 5 devices"));
    EXPECT_THAT(log.entered(channels::deviceEnumerator), IsEmpty());
}

TEST_F(EndpointDeviceEnumeratorAudioDevices, ReplacesWhatTheListHeldAndAnswersItsSize)
{
    const EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;
    enumerator.audioDevices(eRender, devices);

    const unsigned int count = enumerator.audioDevices(eCapture, devices);

    EXPECT_EQ(devices.size(), count);
    EXPECT_THAT(namesOf(devices), ElementsAre("Microphone"));
}

TEST_F(EndpointDeviceEnumeratorAudioDevices, EmptiesTheListEvenIfTheEnumerationIsRefused)
{
    const EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;
    devices.append(AudioDevice());
    const sim::PlannedFault fault = simulation().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints");

    EXPECT_EQ(0u, enumerator.audioDevices(eRender, devices));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(0u, devices.size());
    EXPECT_THAT(log.texts(channels::deviceEnumerator), ElementsAre("Device state index 15 found 0 devices"));
}

TEST_F(EndpointDeviceEnumeratorAudioDevices, ReadsARefusedCountAsZero)
{
    const EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;
    const sim::PlannedFault fault = simulation().faults().fail("IMMDeviceCollection::GetCount");

    EXPECT_EQ(0u, enumerator.audioDevices(eRender, devices));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(channels::deviceEnumerator), ElementsAre("Device state index 15 found 0 devices"));
}

TEST_F(EndpointDeviceEnumeratorAudioDevices, KeepsThePlaceOfAnEndpointThatCannotBeObtained)
{
    const EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;
    const sim::PlannedFault gone = simulation().faults().fail("IMMDeviceCollection::Item").at(1);
    const sim::PlannedFault unreadable = simulation().faults().fail("IMMDevice::OpenPropertyStore").at(2);

    EXPECT_EQ(5u, enumerator.audioDevices(eRender, devices));

    EXPECT_EQ(1u, gone.fired());
    EXPECT_EQ(1u, unreadable.fired());
    EXPECT_THAT(namesOf(devices), ElementsAre("", "Active", "", "Disabled", "Second active"));
    EXPECT_FALSE(devices[0].isInitialized());
    EXPECT_TRUE(devices[2].isInitialized());
}

TEST_F(EndpointDeviceEnumeratorAudioDevices, PassesAllFlowsThroughToThePlatform)
{
    const EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;

    EXPECT_EQ(6u, enumerator.audioDevices(eAll, devices));

    EXPECT_THAT(simulation().journal().of("IMMDeviceEnumerator::EnumAudioEndpoints").calls(),
                ElementsAre("IMMDeviceEnumerator::EnumAudioEndpoints(eAll, 15)"));
}

TEST_F(EndpointDeviceEnumeratorAudioDevices, ReleasesTheCollectionAndKeepsNothing)
{
    const EndpointDeviceEnumerator enumerator;
    qor::Array<AudioDevice> devices;

    enumerator.audioDevices(eRender, devices);
    devices.clear();

    EXPECT_EQ(1, simulation().census().references()) << simulation().census(); // the enumerator itself
}
