// Objects of the program with static and thread storage, in every order.
//
// Where the library is a part of the program, an early object begins before the library's and ends after them; with a
// shared library all of them begin later and end earlier.

#include "tests/ends/library/linking.h"
#include "tests/ends/library/ways.h"

#include <memory>
#include <thread>

namespace ends
{
namespace
{
struct Cards
{
    qor::Array<SoundCard> cards;
};

/// Holds cards if the way wants it, from before main() to its end.
class Holder
{
public:
    explicit Holder(const char* way)
    {
        if (wayOfThisProcess() == way)
            fill();
    }

    ~Holder()
    {
        if (m_isAskedAtTheEnd)
            printNumber(SoundCard::enumerateSystemSoundDevices());
        if (m_cards != nullptr)
            printLine("cards end");
        m_cards.reset();
    }

    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    void fill() { m_cards.reset(new Cards{discover()}); }
    void askAtTheEnd() { m_isAskedAtTheEnd = true; }

private:
    std::unique_ptr<Cards> m_cards;
    bool m_isAskedAtTheEnd = false;
};

[[gnu::init_priority(101)]] Holder earlyHolder("static_object_from_before_the_library");
Holder lateHolder("static_object_from_before_main");

void returnOnly()
{
    tellTheEnd();
}

void fillEarly()
{
    earlyHolder.fill();
    tellTheEnd();
}

void fillBoth()
{
    lateHolder.fill();
    earlyHolder.fill();
    tellTheEnd();
}

void discoverInTheEarlyOnesEnd()
{
    CoInitialize(nullptr);
    machine();
    earlyHolder.askAtTheEnd();
    tellTheEnd();
}

void discoverOnceMoreInTheEarlyOnesEnd()
{
    lateHolder.fill();
    earlyHolder.askAtTheEnd();
    tellTheEnd();
}

void returnWithALocalStatic()
{
    static const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
}

void returnWithAThreadLocal()
{
    thread_local qor::Array<SoundCard> cards = discover();
    tellTheEnd();
}

/// Its cards end with their thread.
void endAThreadWithAThreadLocal()
{
    std::thread(
        []
        {
            thread_local qor::Array<SoundCard> cards = discover();
            printNumber(cards);
        })
        .join();
    CoInitialize(nullptr);
    tellTheEnd();
}

/// It leaves COM in its destructor, after its cards are released, and before the library does.
void returnWithAStaticHelper()
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    machine().registerOnThisThread();
    static libSonavit::SysInfoHelper helper;
    printLine(helper.hasAnalogOut("none") ? "has it" : "has none");
    tellTheEnd();
}

void returnWithStaticValues()
{
    static qor::Array<AudioDevice> devices;
    static qor::String id;
    static qor::Array<SoundCard::VolumeController> controls;
    const qor::Array<SoundCard> cards = discover();
    cards[0].allPlaybackDevice(devices, DEVICE_STATEMASK_ALL);
    cards[0].volumeController(devices[0], controls);
    id = cards[0].deviceId();
    printLine((std::to_string(devices.size()) + " devices, " + std::to_string(controls.size()) + " controls").c_str());
    tellTheEnd();
}

/// After the end of the library a discovery makes a shared enumerator that lasts for good, with its clients.
Lines endAfterALateDiscovery(unsigned discoveries)
{
    if (isLibraryShared())
        return regularEnd(discoveries);
    Lines lines = discoveries == 1 ? Lines() : regularEnd(discoveries - 1);
    if (!lines.empty())
        lines.pop_back();
    lines.push_back("left: " + std::to_string(12 * discoveries) + " strings, cards, clients");
    return lines;
}
}

Ways statics()
{
#if defined(_WIN32)
    const std::string living = ", cards"; // the runtime does not end what the main thread has
    // COM announces the helper's end, too.
    const Lines helper = {"has none", "ends", "CoUninitialize", "left: 12 strings, cards, clients"};
#else
    const std::string living;
    const Lines helper = {"has none", "ends", "CoUninitialize"};
#endif
    return {
        {"static_object_from_before_the_library", Lines{"3 cards", "ends", "cards end"} + regularEnd(), &returnOnly},
        {"static_object_from_before_main", Lines{"3 cards", "ends", "cards end"} + regularEnd(), &returnOnly},
        {"static_object_that_ends_after_the_library", Lines{"3 cards", "ends", "cards end"} + regularEnd(), &fillEarly},
        {"static_objects_on_both_sides_of_the_library",
         Lines{"3 cards", "3 cards", "ends", "cards end", "cards end"} + regularEnd(2), &fillBoth},
        {"first_discovery_in_a_static_destructor", Lines{"ends", "3 cards"} + endAfterALateDiscovery(1),
         &discoverInTheEarlyOnesEnd},
        {"discovery_after_the_end_of_the_library",
         Lines{"3 cards", "ends", "cards end", "3 cards"} + endAfterALateDiscovery(2),
         &discoverOnceMoreInTheEarlyOnesEnd},
        {"local_static_cards", Lines{"3 cards", "ends"} + regularEnd(), &returnWithALocalStatic},
        {"thread_local_cards", Lines{"3 cards", "ends"} + regularEnd(1, living), &returnWithAThreadLocal},
        {"thread_local_cards_of_another_thread", Lines{"3 cards", "3 cards", "ends"} + regularEnd(),
         &endAThreadWithAThreadLocal},
        {"static_helper", helper + regularEnd(), &returnWithAStaticHelper},
        {"static_values", Lines{"3 cards", "1 devices, 2 controls", "ends"} + regularEnd(1, ", 6 lists of parts"),
         &returnWithStaticValues},
    };
}
}
