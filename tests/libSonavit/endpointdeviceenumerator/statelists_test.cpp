#include "libSonavit/endpointdeviceenumerator.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <algorithm>
#include <type_traits>

using qor::LoggerPriority;
using support::namesOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* enumCall = "IMMDeviceEnumerator::EnumAudioEndpoints";

static_assert(!std::is_polymorphic_v<EndpointDeviceEnumeratorCommon>, "it has no virtual operation");
static_assert(std::is_trivially_destructible_v<EndpointDeviceEnumeratorCommon::Collection>, "a plain record");

struct StateListsTest : support::LibraryTest
{
    /// The lists in the order of the table of states.
    static std::vector<std::vector<std::string>> lists(const EndpointDeviceEnumeratorCommon& enumerator)
    {
        return {namesOf(enumerator.activeDevice()), namesOf(enumerator.disabledDevice()),
                namesOf(enumerator.notPresentDevice()), namesOf(enumerator.unpluggedDevice())};
    }

    const std::vector<std::vector<std::string>> empty = {{}, {}, {}, {}};
};

struct EndpointDeviceEnumeratorCommonConstruction : StateListsTest
{
};
struct EndpointDeviceEnumeratorCommonEnumerate : StateListsTest
{
};
struct EndpointDeviceEnumeratorCommonRefresh : StateListsTest
{
};
}

TEST_F(EndpointDeviceEnumeratorCommonConstruction, IsEmptyByDefaultAndCallsNoPlatformFunction)
{
    run(support::endpointsInAllStates());

    const EndpointDeviceEnumeratorCommon enumerator;

    EXPECT_EQ(empty, lists(enumerator));
    EXPECT_EQ(nullptr, enumerator.enumerator().get());
    EXPECT_EQ(nullptr, enumerator.m_notificationObserver);
    EXPECT_EQ(0u, enumerator.m_collections.size());
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_THAT(log.entered(), ElementsAre("EndpointDeviceEnumeratorCommon::EndpointDeviceEnumeratorCommon()"));
    EXPECT_THAT(log.left(), ElementsAre("EndpointDeviceEnumeratorCommon::EndpointDeviceEnumeratorCommon()"));
}

TEST_F(EndpointDeviceEnumeratorCommonConstruction, HasItsFieldsInTheirOrder)
{
    const EndpointDeviceEnumeratorCommon lists;

    const std::vector<const void*> fields = {&lists.m_active,    &lists.m_notPresent,  &lists.m_disabled,
                                             &lists.m_unplugged, &lists.m_collections, &lists.m_notificationObserver,
                                             &lists.m_enumerator};
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end()));
}

TEST_F(EndpointDeviceEnumeratorCommonConstruction, EnumeratesTheFlowThatItIsGiven)
{
    run(support::endpointsInAllStates());

    const EndpointDeviceEnumeratorCommon enumerator(eCapture);

    EXPECT_THAT(namesOf(enumerator.activeDevice()), ElementsAre("Microphone"));
    EXPECT_NE(nullptr, enumerator.enumerator().get());
    EXPECT_EQ(nullptr, enumerator.m_notificationObserver);
    EXPECT_THAT(log.entered(channels::deviceEnumerator),
                ElementsAre("EndpointDeviceEnumeratorCommon::EndpointDeviceEnumeratorCommon(EDataFlow flow)",
                            "EndpointDeviceEnumeratorCommon::enumerate(EDataFlow flow)",
                            "EndpointDeviceEnumeratorCommon::clear()"));
}

TEST_F(EndpointDeviceEnumeratorCommonConstruction, DropsAFailureAndStaysEmpty)
{
    run(support::endpointsInAllStates());
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance");

    const EndpointDeviceEnumeratorCommon enumerator(eCapture);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, enumerator.enumerator().get());
    EXPECT_EQ(empty, lists(enumerator));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, PutsEachEndpointIntoTheListOfItsState)
{
    run(support::endpointsInAllStates());
    EndpointDeviceEnumeratorCommon enumerator;

    EXPECT_TRUE(enumerator.enumerate(eRender));

    const EndpointDeviceEnumeratorCommon& result = enumerator;
    EXPECT_THAT(namesOf(result.activeDevice()), ElementsAre("Active", "Second active"));
    EXPECT_THAT(namesOf(result.disabledDevice()), ElementsAre("Disabled"));
    EXPECT_THAT(namesOf(result.notPresentDevice()), ElementsAre("Not present"));
    EXPECT_THAT(namesOf(result.unpluggedDevice()), ElementsAre("Unplugged"));
    EXPECT_EQ(0u, result.m_collections.size());
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, EnumeratesEachStateSeparately)
{
    run(support::endpointsInAllStates());
    EndpointDeviceEnumeratorCommon enumerator;

    enumerator.enumerate(eRender);

    EXPECT_THAT(simulation().journal().of("CoCreateInstance").calls(),
                ElementsAre("CoCreateInstance(MMDeviceEnumerator, 1, IMMDeviceEnumerator)"));
    EXPECT_THAT(simulation().journal().of("IMMDeviceEnumerator::*").calls(),
                ElementsAre("IMMDeviceEnumerator::EnumAudioEndpoints(eRender, 1)",
                            "IMMDeviceEnumerator::EnumAudioEndpoints(eRender, 2)",
                            "IMMDeviceEnumerator::EnumAudioEndpoints(eRender, 4)",
                            "IMMDeviceEnumerator::EnumAudioEndpoints(eRender, 8)"));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, LogsEachStateWithTheListStillEmpty)
{
    run(support::endpointsInAllStates());
    EndpointDeviceEnumeratorCommon enumerator;

    enumerator.enumerate(eRender);

    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::deviceEnumerator),
                ElementsAre("Device state index 0 found 2 devices", "Device state index 0currently has 0 devices",
                            "Device state index 1 found 1 devices", "Device state index 1currently has 0 devices",
                            "Device state index 2 found 1 devices", "Device state index 2currently has 0 devices",
                            "Device state index 3 found 1 devices", "Device state index 3currently has 0 devices"));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, EmptiesTheListsTwice)
{
    run({});
    EndpointDeviceEnumeratorCommon enumerator;
    log.clear();

    enumerator.enumerate(eRender);

    EXPECT_THAT(log.texts(LoggerPriority::LOG_DEBUG, channels::deviceEnumerator),
                ElementsAre("clearing m_unplugged", "crearing m_disabled", "clearing m_notPresent", "clearing m_active",
                            "clearing m_unplugged", "crearing m_disabled", "clearing m_notPresent",
                            "clearing m_active"));
    EXPECT_THAT(log.entered(channels::deviceEnumerator),
                ElementsAre("EndpointDeviceEnumeratorCommon::enumerate(EDataFlow flow)",
                            "EndpointDeviceEnumeratorCommon::clear()"));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, SucceedsForAFlowWithoutEndpoints)
{
    run({});
    EndpointDeviceEnumeratorCommon enumerator;

    EXPECT_TRUE(enumerator.enumerate(eCapture));

    EXPECT_EQ(empty, lists(enumerator));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO),
                ElementsAre("Device state index 0 found 0 devices", "Device state index 0currently has 0 devices",
                            "Device state index 1 found 0 devices", "Device state index 1currently has 0 devices",
                            "Device state index 2 found 0 devices", "Device state index 2currently has 0 devices",
                            "Device state index 3 found 0 devices", "Device state index 3currently has 0 devices"));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, ReplacesEnumeratorAndListsWhenCalledAgain)
{
    run(support::endpointsInAllStates());
    EndpointDeviceEnumeratorCommon enumerator(eRender);
    long held = -1;
    const sim::PlannedFault created = simulation().faults().run(
        "CoCreateInstance", [&] { held = simulation().census().references("IMMDeviceEnumerator"); });

    EXPECT_TRUE(enumerator.enumerate(eCapture));

    EXPECT_EQ((std::vector<std::vector<std::string>>{{"Microphone"}, {}, {}, {}}), lists(enumerator));
    EXPECT_EQ(1u, created.fired());
    EXPECT_EQ(0, held); // the former one had been released
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, LeavesAllListsEmptyWhenItFailsEvenIfTheyWereFilled)
{
    run(support::endpointsInAllStates());
    EndpointDeviceEnumeratorCommon enumerator(eRender);
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance", E_OUTOFMEMORY);
    log.clear();

    EXPECT_FALSE(enumerator.enumerate(eRender));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(empty, lists(enumerator));
    EXPECT_EQ(nullptr, enumerator.enumerator().get());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR), ElementsAre("CoCreateInstance returns 0x8007000E"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR, channels::deviceEnumerator),
                ElementsAre("CoCreateInstance returns 0x8007000E"));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, FailsWithoutAMessageIfTheCreationSucceedsWithNull)
{
    run(support::endpointsInAllStates());
    EndpointDeviceEnumeratorCommon enumerator(eRender);
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("CoCreateInstance");

    EXPECT_FALSE(enumerator.enumerate(eRender));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(empty, lists(enumerator));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR), IsEmpty());
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, HasAnEndpointThatChangesMeanwhileInTwoLists)
{
    sim::MachineBuilder builder;
    const std::string id = builder.card("Codec").speaker().id();
    run(support::withoutGuids(builder.build()));
    const sim::PlannedFault change =
        simulation().faults().run(enumCall, [&] { simulation().events().unplug(id); }).at(4);

    const EndpointDeviceEnumeratorCommon enumerator(eRender);

    EXPECT_EQ(1u, change.fired());
    EXPECT_THAT(namesOf(enumerator.activeDevice()), ElementsAre("Speakers"));
    EXPECT_THAT(namesOf(enumerator.unpluggedDevice()), ElementsAre("Speakers"));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, HasAnEndpointThatChangesMeanwhileInNoList)
{
    sim::MachineBuilder builder;
    const std::string id = builder.card("Codec").speaker().unplugged().id();
    run(support::withoutGuids(builder.build()));
    const sim::PlannedFault change = simulation().faults().run(enumCall, [&] { simulation().events().plug(id); }).at(4);

    const EndpointDeviceEnumeratorCommon enumerator(eRender);

    EXPECT_EQ(1u, change.fired());
    EXPECT_EQ(empty, lists(enumerator));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, KeepsThePlaceOfAnEndpointThatCannotBeObtained)
{
    run(support::endpointsInAllStates());
    const sim::PlannedFault fault = simulation().faults().fail("IMMDeviceCollection::Item").at(1);

    EndpointDeviceEnumeratorCommon enumerator;

    EXPECT_TRUE(enumerator.enumerate(eRender));
    EXPECT_EQ(1u, fault.fired());
    const EndpointDeviceEnumeratorCommon& result = enumerator;
    EXPECT_THAT(namesOf(result.activeDevice()), ElementsAre("", "Second active"));
    EXPECT_FALSE(result.activeDevice()[0].isInitialized());
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, ReadsARefusedEnumerationOrCountAsNone)
{
    run(support::endpointsInAllStates());
    const sim::PlannedFault noCollection = simulation().faults().fail(enumCall).at(1);
    const sim::PlannedFault noCount = simulation().faults().fail("IMMDeviceCollection::GetCount").at(1);

    EndpointDeviceEnumeratorCommon enumerator;

    EXPECT_TRUE(enumerator.enumerate(eRender));
    EXPECT_EQ(1u, noCollection.fired());
    EXPECT_EQ(1u, noCount.fired()); // the count of the disabled endpoints
    EXPECT_EQ((std::vector<std::vector<std::string>>{{}, {}, {"Not present"}, {"Unplugged"}}), lists(enumerator));
}

TEST_F(EndpointDeviceEnumeratorCommonEnumerate, PassesAllFlowsThroughToThePlatform)
{
    run(support::endpointsInAllStates());

    const EndpointDeviceEnumeratorCommon enumerator(eAll);

    EXPECT_THAT(namesOf(enumerator.activeDevice()), ElementsAre("Active", "Microphone", "Second active"));
    EXPECT_EQ("IMMDeviceEnumerator::EnumAudioEndpoints(eAll, 1)", simulation().journal().of(enumCall)[0].call());
}

TEST_F(EndpointDeviceEnumeratorCommonRefresh, TakesNewListsWithTheSameEnumerator)
{
    run(support::endpointsInAllStates());
    EndpointDeviceEnumeratorCommon enumerator(eRender);
    IMMDeviceEnumerator* const former = enumerator.enumerator().get();
    simulation().events().plug(enumerator.m_unplugged[0].deviceProperty().deviceId.toUtf8());
    log.clear();

    enumerator.refresh(eRender);

    EXPECT_EQ(former, enumerator.enumerator().get());
    const EndpointDeviceEnumeratorCommon& result = enumerator;
    EXPECT_THAT(namesOf(result.activeDevice()), ElementsAre("Unplugged", "Active", "Second active"));
    EXPECT_THAT(namesOf(result.unpluggedDevice()), IsEmpty());
    EXPECT_THAT(log.entered(channels::deviceEnumerator), IsEmpty());
    EXPECT_THAT(
        log.texts(LoggerPriority::LOG_DEBUG, channels::deviceEnumerator),
        ElementsAre("clearing m_unplugged", "crearing m_disabled", "clearing m_notPresent", "clearing m_active"));
}

TEST_F(EndpointDeviceEnumeratorCommonRefresh, ShowsInReferencesTakenBeforeButNotInCopies)
{
    run(support::endpointsInAllStates());
    EndpointDeviceEnumeratorCommon enumerator(eRender);
    const EndpointDeviceEnumeratorCommon& constant = enumerator;
    const qor::Array<AudioDevice>& reference = constant.activeDevice();
    const qor::Array<AudioDevice> copy = enumerator.activeDevice();

    simulation().events().add(
        []
        {
            sim::MachineBuilder builder("later");
            builder.card("USB").speaker("Arrived");
            return support::withoutGuids(builder.build()).endpoints[0];
        }());
    enumerator.refresh(eRender);

    EXPECT_THAT(namesOf(reference), ElementsAre("Active", "Second active", "Arrived"));
    EXPECT_THAT(namesOf(copy), ElementsAre("Active", "Second active"));
}
