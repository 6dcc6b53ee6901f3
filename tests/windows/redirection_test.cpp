// The machine before all threads of a module: of this executable, which contains the simulator, of the library's DLL,
// and of a DLL with other kinds of imports.

#include "libSonavit/libsonavit.h"
#include "tests/windows/redirectiontest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <thread>

using redirectiontest::create;
using redirectiontest::createAndRelease;
using redirectiontest::inNewApartment;
using redirectiontest::RedirectionTest;
using redirectiontest::twoCards;
using testing::ElementsAre;
using testing::Values;

namespace
{
/// Some code of this executable.
void ownCode() {}

const void* const thisModule = reinterpret_cast<const void*>(&ownCode);

class RedirectionInApartment : public RedirectionTest, public testing::WithParamInterface<DWORD>
{
};

class RedirectionCreate : public RedirectionTest
{
};

class RedirectionEnd : public RedirectionTest
{
};
}

TEST_P(RedirectionInApartment, GivesTheMachineToAThreadThatHasNotRegistered)
{
    inNewApartment(GetParam(), [] { createAndRelease(); });
    ASSERT_EQ(0u, creations()) << "without a redirection the thread meets the system";
    const sim::Redirection redirection(thisModule);

    UINT endpoints = 0;
    inNewApartment(GetParam(),
                   [&]
                   {
                       IMMDeviceEnumerator* enumerator = nullptr;
                       ASSERT_EQ(S_OK, create(&enumerator));
                       IMMDeviceCollection* collection = nullptr;
                       EXPECT_EQ(S_OK, enumerator->EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, &collection));
                       EXPECT_EQ(S_OK, collection->GetCount(&endpoints));
                       collection->Release();
                       enumerator->Release();
                   });

    EXPECT_EQ(4u, endpoints);
    EXPECT_EQ(1u, creations());
}

TEST_P(RedirectionInApartment, GivesTheMachineToTheLibrary)
{
    const sim::Redirection redirection(reinterpret_cast<const void*>(&enumerateSoundCards));

    inNewApartment(GetParam(),
                   []
                   {
                       qor::Array<BorrowedPointer<SoundCardInterface>> cards;
                       enumerateSoundCards(cards);
                       EXPECT_EQ(2u, cards.size());
                       for (unsigned int i = 0; i < cards.size(); ++i)
                           delete cards[i].get();
                       libSonavit::AudioDeviceEnumeratorFactory::enumerator() = nullptr;
                   });

    EXPECT_LT(0u, creations());
    const sim::Census census = simulation().census();
    left.taskMemory = census.taskMemory; // strings that the library keeps; its own tests count them
    left.taskBytes = census.taskBytes;
}

INSTANTIATE_TEST_SUITE_P(Apartments, RedirectionInApartment,
                         Values(DWORD(COINIT_MULTITHREADED), DWORD(COINIT_APARTMENTTHREADED)));

TEST_F(RedirectionCreate, OnARegisteredThreadIsRecordedOnce)
{
    const sim::Redirection redirection(thisModule);

    EXPECT_EQ(S_OK, createAndRelease());

    EXPECT_THAT(journal().of("CoCreateInstance").calls(),
                ElementsAre("CoCreateInstance(MMDeviceEnumerator, 1, IMMDeviceEnumerator)"));
}

TEST_F(RedirectionCreate, OnAThreadWithoutComFailsAsTheSystemDoes)
{
    const sim::Redirection redirection(thisModule);

    HRESULT result = S_OK;
    std::thread([&] { result = createAndRelease(); }).join();

    EXPECT_EQ(CO_E_NOTINITIALIZED, result);
}

TEST_F(RedirectionCreate, OutsideOfThisProcessFindsNoClass)
{
    const sim::Redirection redirection(thisModule);
    void* object = this;

    EXPECT_EQ(REGDB_E_CLASSNOTREG, CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_LOCAL_SERVER,
                                                    __uuidof(IMMDeviceEnumerator), &object));

    EXPECT_EQ(nullptr, object);
}

TEST_F(RedirectionCreate, OfAnotherClassIsTheSystems)
{
    const sim::Redirection redirection(thisModule);
    IUnknown* table = nullptr;

    EXPECT_EQ(S_OK, CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                     IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&table)));

    ASSERT_NE(nullptr, table);
    table->Release();
    EXPECT_EQ(0u, creations());
}

TEST_F(RedirectionCreate, OfSeveralInterfacesAnswersForEach)
{
    const sim::Redirection redirection(thisModule);
    MULTI_QI queries[] = {{&__uuidof(IMMDeviceEnumerator), nullptr, E_FAIL}, {&__uuidof(IMMDevice), nullptr, E_FAIL}};

    EXPECT_EQ(CO_S_NOTALLINTERFACES,
              CoCreateInstanceEx(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER, nullptr, 2, queries));

    EXPECT_EQ(S_OK, queries[0].hr);
    EXPECT_EQ(E_NOINTERFACE, queries[1].hr);
    EXPECT_EQ(nullptr, queries[1].pItf);
    ASSERT_NE(nullptr, queries[0].pItf);
    queries[0].pItf->Release();
    EXPECT_EQ(1u, creations());
}

TEST_F(RedirectionCreate, ByTheClassObjectIsRecordedOnce)
{
    const sim::Redirection redirection(thisModule);

    inNewApartment(COINIT_MULTITHREADED,
                   []
                   {
                       IClassFactory* factory = nullptr;
                       ASSERT_EQ(S_OK, CoGetClassObject(__uuidof(MMDeviceEnumerator), CLSCTX_INPROC_SERVER, nullptr,
                                                        IID_IClassFactory, reinterpret_cast<void**>(&factory)));
                       IUnknown* enumerator = nullptr;
                       EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, __uuidof(IMMDeviceEnumerator),
                                                               reinterpret_cast<void**>(&enumerator)));
                       enumerator->Release();
                       factory->Release();
                   });

    EXPECT_EQ(1u, creations());
}

TEST_F(RedirectionEnd, GivesTheThreadsBackToTheSystem)
{
    {
        const sim::Redirection redirection(thisModule);
        inNewApartment(COINIT_MULTITHREADED, [] { createAndRelease(); });
        ASSERT_EQ(1u, creations());
    }

    inNewApartment(COINIT_MULTITHREADED, [] { createAndRelease(); });

    EXPECT_EQ(1u, creations());
}

TEST_F(RedirectionEnd, InAnyOrderKeepsTheMachineUntilTheLastOne)
{
    for (const bool firstEndsFirst : {true, false})
    {
        auto first = std::make_unique<sim::Redirection>(thisModule);
        auto second = std::make_unique<sim::Redirection>(thisModule);
        journal().clear();

        (firstEndsFirst ? first : second).reset();
        inNewApartment(COINIT_MULTITHREADED, [] { createAndRelease(); });
        EXPECT_EQ(1u, creations()) << "one of two is left";
        (firstEndsFirst ? second : first).reset();
        inNewApartment(COINIT_MULTITHREADED, [] { createAndRelease(); });

        EXPECT_EQ(1u, creations()) << "none is left";
    }
}

TEST_F(RedirectionEnd, OfOneModuleLeavesOtherModules)
{
    const sim::Redirection redirection(thisModule);
    auto other = std::make_unique<sim::Redirection>(reinterpret_cast<const void*>(&enumerateSoundCards));
    auto ofNothing = std::make_unique<sim::Redirection>(nullptr);

    other.reset();
    ofNothing.reset();
    inNewApartment(COINIT_MULTITHREADED, [] { createAndRelease(); });

    EXPECT_EQ(1u, creations());
}

TEST(RedirectionWithoutMachine, LeavesTheSystemsAnswers)
{
    CoInitialize(nullptr);
    const HRESULT systems = createAndRelease();
    const UINT outputs = waveOutGetNumDevs();

    const sim::Redirection redirection(thisModule);

    EXPECT_EQ(systems, createAndRelease());
    EXPECT_EQ(outputs, waveOutGetNumDevs());
    CoUninitialize();
}

// In a suite, and so in a process, of its own: the simulator calls the function before the first machine.
TEST(RedirectionOfTheSimulatorsModule, RecordsNoCallOfTheSimulatorItself)
{
    CoInitialize(nullptr);
    const sim::Redirection redirection(thisModule);

    sim::Machine machine = twoCards();
    machine.waveOut.resize(7);
    machine.waveIn.resize(3);

    sim::Simulation simulation(machine);

    EXPECT_EQ(0u, simulation.journal().count("waveOutGetNumDevs"));
    EXPECT_EQ(7u, waveOutGetNumDevs());
    EXPECT_EQ(1u, simulation.journal().count("waveOutGetNumDevs"));
    EXPECT_EQ(3u, waveInGetNumDevs());
    EXPECT_EQ(1u, simulation.journal().count("waveInGetNumDevs"));
    CoUninitialize();
}
