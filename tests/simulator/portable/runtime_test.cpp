#include "tests/simulator/bench.h"

#include "OSWindows/configmanager.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::Wide;
using testing::ElementsAre;

class RuntimeOfSimulation : public bench::SimulationTest
{
protected:
    RuntimeOfSimulation() { simulation.journal().clear(); }
};

using RuntimeApartment = RuntimeOfSimulation;
using RuntimeCreate = RuntimeOfSimulation;
using RuntimeTaskMemory = RuntimeOfSimulation;
using RuntimeClsid = RuntimeOfSimulation;
using RuntimeMessages = RuntimeOfSimulation;
using RuntimeDevices = RuntimeOfSimulation;

HRESULT create(REFCLSID clsid, DWORD context, REFIID iid, void** object)
{
    return CoCreateInstance(clsid, nullptr, context, iid, object);
}

TEST_F(RuntimeApartment, CountsInitialisationsOfEachThread)
{
    std::vector<HRESULT> results;
    bench::onThread(
        [&]
        {
            results.push_back(CoInitialize(nullptr));
            results.push_back(CoInitialize(nullptr));
            results.push_back(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
            for (int call = 0; call < 3; ++call)
                CoUninitialize();
            results.push_back(CoInitializeEx(nullptr, COINIT_MULTITHREADED));
            results.push_back(CoInitializeEx(nullptr, COINIT_MULTITHREADED));
            CoUninitialize();
            CoUninitialize();
        });

    EXPECT_THAT(results, ElementsAre(S_OK, S_FALSE, S_FALSE, S_OK, S_FALSE));
    EXPECT_EQ(0u, simulation.comUnderflows());
}

TEST_F(RuntimeApartment, RefusesAChangeOfModeAndDoesNotCountIt)
{
    HRESULT toMany = S_OK;
    HRESULT toSingle = S_OK;
    bench::onThread(
        [&]
        {
            CoInitialize(nullptr);
            toMany = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            CoUninitialize();
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            toSingle = CoInitialize(nullptr);
            CoUninitialize();
        });

    EXPECT_EQ(RPC_E_CHANGED_MODE, toMany);
    EXPECT_EQ(RPC_E_CHANGED_MODE, toSingle);
    EXPECT_EQ(0u, simulation.comUnderflows());
}

TEST_F(RuntimeApartment, ToleratesAndRecordsAnUninitialisationTooMany)
{
    HRESULT afterwards = E_FAIL;
    bench::onThread(
        [&]
        {
            CoUninitialize();
            CoUninitialize();
            afterwards = CoInitialize(nullptr);
            CoUninitialize();
        });

    EXPECT_EQ(S_OK, afterwards);
    EXPECT_EQ(2u, simulation.comUnderflows());
}

TEST_F(RuntimeCreate, FailsOnAThreadWithoutCom)
{
    bench::onThread(
        [&]
        {
            void* object = poison<void>();
            EXPECT_EQ(CO_E_NOTINITIALIZED,
                      create(CLSID_MMDeviceEnumerator, CLSCTX_ALL, IID_IMMDeviceEnumerator, &object));
            EXPECT_EQ(nullptr, object);
        });
}

// The tests of Wine, which were run on Windows.
TEST_F(RuntimeCreate, GivesEachCallerTheSameEnumerator)
{
    Held<IMMDeviceEnumerator> first;
    Held<IUnknown> second;
    EXPECT_EQ(S_OK, create(CLSID_MMDeviceEnumerator, CLSCTX_INPROC_SERVER, IID_IMMDeviceEnumerator, first.putVoid()));
    EXPECT_EQ(S_OK, create(CLSID_MMDeviceEnumerator, CLSCTX_ALL, IID_IUnknown, second.putVoid()));

    EXPECT_EQ(first.as<IUnknown>().get(), second.get());
    EXPECT_EQ(4u, first->AddRef()); // two users' and the platform's own before it
    EXPECT_EQ(3u, first->Release());
}

TEST_F(RuntimeCreate, KnowsNoOtherClassContextOrInterface)
{
    void* object = poison<void>();
    EXPECT_EQ(REGDB_E_CLASSNOTREG, create(IID_IMMDevice, CLSCTX_ALL, IID_IMMDeviceEnumerator, &object));
    EXPECT_EQ(nullptr, object);
    object = poison<void>();
    EXPECT_EQ(REGDB_E_CLASSNOTREG,
              create(CLSID_MMDeviceEnumerator, CLSCTX_LOCAL_SERVER, IID_IMMDeviceEnumerator, &object));
    EXPECT_EQ(nullptr, object);
    object = poison<void>();
    EXPECT_EQ(E_NOINTERFACE, create(CLSID_MMDeviceEnumerator, CLSCTX_ALL, IID_IMMDevice, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, create(CLSID_MMDeviceEnumerator, CLSCTX_ALL, IID_IMMDeviceEnumerator, nullptr));
    const Held<IMMDeviceEnumerator> outer(simulation.enumerator());
    EXPECT_EQ(CLASS_E_NOAGGREGATION,
              CoCreateInstance(CLSID_MMDeviceEnumerator, outer.get(), CLSCTX_ALL, IID_IMMDeviceEnumerator, &object));
}

TEST_F(RuntimeCreate, IsRecordedWithClassContextAndInterface)
{
    createdEnumerator();

    EXPECT_THAT(simulation.journal().entries().lines(),
                ElementsAre("CoCreateInstance(MMDeviceEnumerator, 1, IMMDeviceEnumerator) -> 0x00000000"));
}

TEST_F(RuntimeTaskMemory, IsCountedAndGivenBack)
{
    void* const block = CoTaskMemAlloc(24);
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(24, simulation.census().taskBytes);
    EXPECT_EQ(1, simulation.census().taskMemory.at("CoTaskMemAlloc"));

    CoTaskMemFree(block);
    CoTaskMemFree(nullptr);

    EXPECT_THAT(simulation.journal().entries().calls(),
                ElementsAre("CoTaskMemAlloc(24)", "CoTaskMemFree(CoTaskMemAlloc)", "CoTaskMemFree(null)"));
}

TEST_F(RuntimeTaskMemory, CanRunOut)
{
    const sim::PlannedFault fault = simulation.faults().fail("CoTaskMemAlloc", E_OUTOFMEMORY).at(2);

    void* const first = CoTaskMemAlloc(8);
    EXPECT_NE(nullptr, first);
    EXPECT_EQ(nullptr, CoTaskMemAlloc(8));

    EXPECT_EQ(1u, fault.fired());
    CoTaskMemFree(first);
}

TEST_F(RuntimeTaskMemory, LeavesAloneWhatItDidNotGive)
{
    int somewhere = 0;
    CoTaskMemFree(&somewhere);

    EXPECT_THAT(simulation.journal().entries().calls(), ElementsAre("CoTaskMemFree(unknown block)"));
}

TEST_F(RuntimeTaskMemory, ClearsNumbersAndNothing)
{
    PROPVARIANT number;
    PropVariantInit(&number);
    number.vt = VT_UI4;
    number.ulVal = 7;

    EXPECT_EQ(S_OK, PropVariantClear(&number));
    EXPECT_EQ(VT_EMPTY, number.vt);
    EXPECT_EQ(S_OK, PropVariantClear(nullptr));
}

TEST_F(RuntimeTaskMemory, IsFreedForEveryTagThatPointsToIt)
{
    for (const VARTYPE tag : {VT_LPWSTR, VT_LPSTR, VT_CLSID, VT_BLOB})
    {
        PROPVARIANT value;
        PropVariantInit(&value);
        value.vt = tag;
        void* const block = CoTaskMemAlloc(16);
        if (tag == VT_BLOB)
            value.blob = {16, static_cast<BYTE*>(block)};
        else
            value.pwszVal = static_cast<LPWSTR>(block);

        EXPECT_EQ(S_OK, PropVariantClear(&value));

        EXPECT_EQ(0, simulation.census().taskBlocks()) << tag;
        EXPECT_EQ(VT_EMPTY, value.vt);
    }
    EXPECT_EQ(1u, simulation.journal().entries().with("65").of("PropVariantClear").size());
}

TEST_F(RuntimeTaskMemory, IsNotTouchedForATagThatIsANumber)
{
    PROPVARIANT value;
    PropVariantInit(&value);
    void* const block = CoTaskMemAlloc(16);
    value.vt = VT_UI8;
    value.pwszVal = static_cast<LPWSTR>(block);

    EXPECT_EQ(S_OK, PropVariantClear(&value));

    EXPECT_EQ(1, simulation.census().taskBlocks());
    CoTaskMemFree(block);
}

TEST_F(RuntimeClsid, IsReadFromText)
{
    CLSID clsid = {};
    EXPECT_EQ(S_OK, CLSIDFromString(Wide("{bcde0395-E52F-467C-8E3D-C4579291692E}"), &clsid));
    EXPECT_TRUE(IsEqualGUID(CLSID_MMDeviceEnumerator, clsid));
}

TEST_F(RuntimeClsid, IsZeroForANullText)
{
    CLSID clsid = CLSID_MMDeviceEnumerator;
    EXPECT_EQ(S_OK, CLSIDFromString(nullptr, &clsid));
    EXPECT_TRUE(IsEqualGUID(GUID_NULL, clsid));
}

TEST_F(RuntimeClsid, IsRefusedForAnyOtherText)
{
    CLSID clsid = {};
    for (const char* text : {"", "Sonavit.Unknown", "{BCDE0395-E52F-467C-8E3D-C4579291692E",
                             "{BCDE0395-E52F-467C-8E3D-C4579291692G}", "BCDE0395-E52F-467C-8E3D-C4579291692E"})
        EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromString(Wide(text), &clsid)) << text;
}

TEST_F(RuntimeMessages, AreKeptInOrder)
{
    HWND const window = reinterpret_cast<HWND>(std::uintptr_t{0x1234});

    EXPECT_EQ(TRUE, PostMessageW(window, 0x3D1, 1, -2));
    EXPECT_EQ(TRUE, PostMessageW(nullptr, 0x3D2, 0, 0));

    EXPECT_THAT(simulation.postedMessages(),
                ElementsAre(sim::PostedMessage{window, 0x3D1, 1, -2}, sim::PostedMessage{nullptr, 0x3D2, 0, 0}));
    EXPECT_EQ("PostMessageW(977, 1, -2)", simulation.journal().entries()[0].call());
}

TEST_F(RuntimeMessages, CanBeRefused)
{
    simulation.faults().fail("PostMessageW");

    EXPECT_EQ(FALSE, PostMessageW(nullptr, 0x3D1, 0, 0));
    EXPECT_TRUE(simulation.postedMessages().empty());
}

TEST_F(RuntimeDevices, HaveTheParentsThatTheMachineKnows)
{
    simulation.change(
        [](sim::Machine& machine) {
            machine.deviceInstances = {{"HDAUDIO\\FUNC_01&X\\4&1", "PCI\\VEN_1\\3&2"}, {"ROOT\\LONELY", {}}};
        });
    qor::String parent("before");

    EXPECT_TRUE(libOSWindows::ConfigManager::getParentDeviceInstanceId("hdaudio\\func_01&x\\4&1", parent));
    EXPECT_EQ("PCI\\VEN_1\\3&2", parent.toUtf8());
    EXPECT_EQ("getParentDeviceInstanceId(hdaudio\\func_01&x\\4&1)", simulation.journal().entries()[0].call());
}

TEST_F(RuntimeDevices, LeaveTheTextAloneWhereThereIsNoParent)
{
    simulation.change([](sim::Machine& machine) { machine.deviceInstances = {{"A", "B"}, {"ROOT\\LONELY", {}}}; });
    simulation.faults().fail("getParentDeviceInstanceId").with("A");
    qor::String parent("before");

    for (const char* child : {"ROOT\\LONELY", "UNKNOWN", "", "A"})
        EXPECT_FALSE(libOSWindows::ConfigManager::getParentDeviceInstanceId(child, parent)) << child;

    EXPECT_EQ("before", parent.toUtf8());
}

TEST_F(RuntimeMessages, MayComeFromSeveralThreadsAsWellAsSurplusUninitialisations)
{
    constexpr unsigned rounds = 4000;
    const auto use = []
    {
        for (unsigned round = 0; round < rounds; ++round)
        {
            PostMessageW(nullptr, 0x3D1, 0, 0);
            CoUninitialize();
        }
    };
    simulation.journal().record(false);

    std::thread first(use);
    std::thread second(use);
    first.join();
    second.join();

    EXPECT_EQ(2 * rounds, simulation.postedMessages().size());
    EXPECT_EQ(2 * rounds, simulation.comUnderflows());
}

TEST(RuntimeWithoutSimulation, AnswersAsOnAMachineWithoutAudio)
{
    EXPECT_EQ(S_OK, CoInitialize(nullptr));
    void* object = poison<void>();
    qor::String parent("before");

    EXPECT_EQ(REGDB_E_CLASSNOTREG, create(CLSID_MMDeviceEnumerator, CLSCTX_ALL, IID_IMMDeviceEnumerator, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, create(CLSID_MMDeviceEnumerator, CLSCTX_ALL, IID_IMMDeviceEnumerator, nullptr));
    EXPECT_EQ(0u, waveOutGetNumDevs());
    EXPECT_EQ(0u, waveInGetNumDevs());
    EXPECT_EQ(MMSYSERR_BADDEVICEID, waveOutMessage(nullptr, DRV_QUERYFUNCTIONINSTANCEIDSIZE, 0, 0));
    EXPECT_EQ(MMSYSERR_BADDEVICEID, waveInMessage(nullptr, DRV_QUERYFUNCTIONINSTANCEIDSIZE, 0, 0));
    EXPECT_EQ(FALSE, PostMessageW(nullptr, 0x3D1, 0, 0));
    EXPECT_FALSE(libOSWindows::ConfigManager::getParentDeviceInstanceId("PCI\\1", parent));
    EXPECT_EQ("before", parent.toUtf8());

    void* const block = CoTaskMemAlloc(8);
    EXPECT_NE(nullptr, block);
    CoTaskMemFree(block);
    CoUninitialize();
    CoUninitialize(); // one too many
}
}
