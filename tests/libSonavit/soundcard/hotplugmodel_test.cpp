#include "libSonavit/soundcard.h"

#include "COM/identifiers.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "simulator/simulation.h"
#include "tests/libSonavit/soundcard/supportobserver.h"
#include "tests/support/logcapture.h"
#include "tests/support/pace.h"
#include "tests/support/storm.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <random>
#include <thread>

namespace
{
constexpr unsigned int numCards = 50;
constexpr unsigned int endpointsOfACard = 4;

typedef std::vector<std::pair<std::string, unsigned int>> ModelList; // id and state

/// The expected lists of a card, and the expected numbers of notifications.
struct ModelCard
{
    ModelList lists[2]; // by flow: playback, record
    std::size_t notifications[2] = {0, 0};
};

std::string pathOf(unsigned int card)
{
    return "{1}.ROOT\\MODEL\\" + std::to_string(card);
}

std::string idOf(unsigned int card, unsigned int endpoint)
{
    return "{0.0.0.00000000}.{" + std::to_string(card) + "-" + std::to_string(endpoint) + "}";
}

EDataFlow flowOf(unsigned int endpoint)
{
    return endpoint % 2 == 0 ? eRender : eCapture;
}

sim::Machine machineOfManyCards()
{
    sim::Machine machine;
    for (unsigned int card = 0; card < numCards; ++card)
    {
        for (unsigned int i = 0; i < endpointsOfACard; ++i)
        {
            sim::Endpoint endpoint;
            endpoint.id = idOf(card, i);
            endpoint.flow = flowOf(i);
            sim::setProperty(endpoint.properties, propertykeys::instancePath, sim::PropertyValue::ofText(pathOf(card)));
            machine.endpoints.push_back(endpoint);
        }
    }
    return machine;
}

ModelList listOf(const qor::Array<AudioDevice>& devices)
{
    ModelList list;
    for (unsigned int i = 0; i < devices.size(); ++i)
        list.emplace_back(devices[i].deviceProperty().deviceId.toUtf8(), devices[i].deviceProperty().deviceState);
    return list;
}

/// Random events on many cards, and a model of plain data that gets the same events.
class HotPlugModel : public testing::Test
{
protected:
    ~HotPlugModel() noexcept override {} // the cards' own may throw

    void SetUp() override
    {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        m_simulation = std::make_unique<sim::Simulation>(machineOfManyCards());
        m_simulation->journal().record(false);
        m_simulation->deliverAtOnce(true);
        m_cards = SoundCard::enumerateSystemSoundDevices();
        ASSERT_EQ(numCards, m_cards.size());
        for (unsigned int card = 0; card < numCards; ++card)
        {
            ASSERT_EQ(pathOf(card), m_cards[card].deviceId().toUtf8());
            m_cards[card].registerPlaybackObserver(m_observers[card][0].handle());
            m_cards[card].registerRecordObserver(m_observers[card][1].handle());
            for (unsigned int i = 0; i < endpointsOfACard; ++i)
                m_model[card].lists[flowOf(i)].emplace_back(idOf(card, i), DEVICE_STATE_ACTIVE);
        }
    }

    void TearDown() override
    {
        m_cards.clear();
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // ends the module
        EXPECT_EQ(sim::Census(), m_simulation->census());
        m_simulation.reset();
        CoUninitialize();
    }

    /// Plays one event, and has the model follow it. @return the card of the event
    unsigned int playEvent()
    {
        const unsigned int card = below(numCards);
        const unsigned int endpoint = below(endpointsOfACard);
        const std::string id = idOf(card, endpoint);
        ModelCard& model = m_model[card];
        ModelList& list = model.lists[flowOf(endpoint)];
        const auto place = std::find_if(list.begin(), list.end(), [&](const auto& entry) { return entry.first == id; });
        const unsigned int state = 1u << below(4);
        switch (below(3))
        {
        case 0:
            m_simulation->events().announceAdded(id);
            list.emplace_back(id, m_states[card][endpoint]);
            ++model.notifications[flowOf(endpoint)];
            break;
        case 1:
            m_simulation->events().announceRemoved(id);
            if (place != list.end())
            {
                list.erase(place);
                ++model.notifications[flowOf(endpoint)];
            }
            break;
        default:
            m_simulation->events().waitForClients(); // what was announced before is read in the state of that time
            m_simulation->events().setState(id, state);
            m_simulation->events().waitForClients();
            m_states[card][endpoint] = state;
            if (place != list.end())
            {
                place->second = state;
                ++model.notifications[flowOf(endpoint)];
            }
            break;
        }
        return card;
    }

    /// What the threads of a program may do while events arrive, as long as each has devices of its own.
    void useOwnDevices(unsigned int first)
    {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        ASSERT_TRUE(SUCCEEDED(m_simulation->registerOnThisThread()));
        for (unsigned int i = first; !m_isOver; ++i)
        {
            AudioDevice::setStoreAccess(i % 2 == 0 ? StoreAccess::writeElseRead : StoreAccess::readWrite);
            AudioDevice device(qor::String(idOf(i % numCards, i % endpointsOfACard).c_str()));
            m_found += device.isInitialized() && device.isEndpoint() ? 1 : 0;
            static_cast<void>(device.waveLegacyDeviceID());
            qor::Array<AudioDevice> outputs;
            m_found += libSonavit::EndpointDeviceEnumerator().audioDevices(eRender, outputs) > 0 ? 1 : 0;
        }
        CoUninitialize();
    }

    /// Compares a card with its model.
    void compare(unsigned int card)
    {
        ASSERT_EQ(m_model[card].lists[eRender], listOf(*m_cards[card].m_playbackDevices)) << "card " << card;
        ASSERT_EQ(m_model[card].lists[eCapture], listOf(*m_cards[card].m_recordDevices)) << "card " << card;
        ASSERT_EQ(m_model[card].notifications[0], m_observers[card][0].notifications.size()) << "card " << card;
        ASSERT_EQ(m_model[card].notifications[1], m_observers[card][1].notifications.size()) << "card " << card;
    }

    unsigned int below(unsigned int limit) { return static_cast<unsigned int>(m_engine()) % limit; }

    struct States
    {
        unsigned int of[endpointsOfACard] = {1, 1, 1, 1};
        unsigned int& operator[](unsigned int endpoint) { return of[endpoint]; }
    };

    std::mt19937 m_engine{20240};
    support::LogCapture m_log{qor::LoggerPriority::LOG_FATAL}; // most properties of such cards cannot be read
    std::unique_ptr<sim::Simulation> m_simulation;
    qor::Array<SoundCard> m_cards;
    ModelCard m_model[numCards];
    States m_states[numCards];
    support::RecordingObserver m_observers[numCards][2];
    std::atomic<bool> m_isOver{false};
    std::atomic<unsigned int> m_found{0};
};
}

TEST_F(HotPlugModel, AgreesWithTheListsAndTheObserversOfFiftyCardsEventByEvent)
{
    constexpr unsigned int numEvents = support::cases(1000, 100);

    for (unsigned int event = 0; event < numEvents && !HasFatalFailure(); ++event)
        compare(playEvent());
}

TEST_F(HotPlugModel, AgreesWithTheListsAndTheObserversOfFiftyCardsAfterThousandsOfEvents)
{
    constexpr unsigned int numEvents = support::cases(10000, 500);

    for (unsigned int event = 0; event < numEvents; ++event)
        playEvent();

    for (unsigned int card = 0; card < numCards && !HasFatalFailure(); ++card)
        compare(card);
}

TEST_F(HotPlugModel, AgreesAfterAStormOnThePlatformsThreadWhileOthersUseDevicesOfTheirOwn)
{
    m_simulation->deliverAtOnce(false);
    std::thread others[] = {std::thread([this] { useOwnDevices(0); }), std::thread([this] { useOwnDevices(7); })};

    for (unsigned int event = support::stormEvents(support::cases(1000, 150)); event > 0; --event)
        playEvent();
    m_simulation->events().waitForClients();

    while (m_found == 0) // on a busy computer the others may have only just begun
        std::this_thread::yield();
    m_isOver = true;
    for (std::thread& other : others)
        other.join();
    AudioDevice::setStoreAccess(StoreAccess::readWrite);
    for (unsigned int card = 0; card < numCards && !HasFatalFailure(); ++card)
        compare(card);
}
