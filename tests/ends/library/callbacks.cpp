// exit() where the library, or the platform, calls the program.

#include "tests/ends/library/ways.h"

#include <cstdlib>
#include <thread>

namespace ends
{
namespace
{
/// The platform's thread calls it, and it ends the process there.
class Exiter final : public SoundCardObserver
{
public:
    void onDeviceStateChanged() override
    {
        CoInitialize(nullptr);
        tellTheEnd();
        std::exit(0);
    }

    void onDeviceAdded() override {}
    void onDeviceRemoved() override {}
};

void exitInAnObserver()
{
    static Exiter exiter;
    qor::Array<SoundCard> cards = discover();
    observe(cards, exiter);
    causeAnEvent();
    printLine("not reached");
}

void exitInAVolumeNotification()
{
    const qor::Array<SoundCard> cards = discover();
    qor::Array<AudioDevice> devices;
    cards[0].allPlaybackDevice(devices, DEVICE_STATEMASK_ALL);
    const COMPtr<VolumeChangeNotification>::pointer notification(new VolumeChangeNotification);
    notification->setCallbackFunction(
        [](void*)
        {
            CoInitialize(nullptr);
            tellTheEnd();
            std::exit(0);
        },
        nullptr);
    devices[0].volumeControl()->registerVolumeChangeNotification(notification);
    machine().events().setVolume(speakers(), -6.0f);
    machine().events().waitForClients();
    printLine("not reached");
}

void exitAtTheFirstMessage(const qor::LogRecord&)
{
    static bool hasExited = false;
    if (hasExited)
        return; // the end of the library logs as well
    hasExited = true;
    printLine("logged");
    tellTheEnd();
    std::exit(0);
}

void logEverythingTo(void (*sink)(const qor::LogRecord&))
{
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_DEBUG);
    qor::LogFactory::logger("comptr").m_priority = -1;
    qor::LogFactory::setSink(sink);
}

void exitInALogSink()
{
    const qor::Array<SoundCard> cards = discover();
    logEverythingTo(&exitAtTheFirstMessage);
    discover();
}

/// While the lock of the log is held, and other threads wait for it.
void exitInALogSinkOnAnotherThread()
{
    const qor::Array<SoundCard> cards = discover();
    logEverythingTo(&exitAtTheFirstMessage);
    std::thread([] { discover(); }).join();
}

/// The machine calls the program in the middle of the discovery.
void exitInTheMiddleOfADiscovery()
{
    machine()
        .faults()
        .run("IMMDevice::Activate",
             []
             {
                 printLine("activates");
                 tellTheEnd();
                 std::exit(0);
             })
        .at(8);
    discover();
}

unsigned records = 0;

/// The log works while the static objects of the library are destroyed.
void logAtTheEnd()
{
    {
        const qor::Array<SoundCard> cards = discover();
    }
    tellTheEnd();
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_DEBUG);
    qor::LogFactory::setSink(
        [](const qor::LogRecord& record)
        {
            if (records++ == 0)
                printLine(record.channel);
        });
}
}

Ways callbacks()
{
    return {
        {"exit_in_an_observer", Lines{"3 cards"} + regularEnd(1, ", cards", 1), &exitInAnObserver},
        {"exit_in_a_volume_notification", Lines{"3 cards"} + regularEnd(1, ", cards, clients"),
         &exitInAVolumeNotification},
        {"exit_in_a_log_sink", Lines{"3 cards", "logged"} + regularEnd(1, ", cards"), &exitInALogSink},
        {"exit_in_a_log_sink_on_another_thread", Lines{"3 cards", "logged"} + regularEnd(1, ", cards"),
         &exitInALogSinkOnAnotherThread},
        {"exit_in_the_middle_of_a_discovery", Lines{"activates"} + regularEnd(0, ", cards", 4),
         &exitInTheMiddleOfADiscovery},
        {"log_at_the_end", Lines{"3 cards", "ends", "libSonavit.soundcard"} + regularEnd(), &logAtTheEnd},
    };
}
}
