// Objects of the program with static and thread storage, in every order.

#include "tests/ends/client/ways.h"

#include <optional>
#include <thread>

#if defined(_WIN32)
#include <windows.h>
#endif

using namespace sonavit;

namespace ends
{
namespace
{
/// A System of the program from before main() to its end, if the way wants it.
class Holder
{
public:
    explicit Holder(const char* way)
    {
        if (wayOfThisProcess() != way)
            return;
        fill();
        causeAnEventAndWait(*m_system);
    }

    void fill() { m_system = beginSystem(); }
    System& system() { return *m_system; }

private:
    std::unique_ptr<System> m_system;
};

[[gnu::init_priority(102)]] Holder earlyHolder("static_system_from_before_the_layer");
Holder lateHolder("static_system_from_before_main");

void returnOnly()
{
    tellWhatIsLeft();
}

/// Where the layer is a part of the program, it ends before the System.
void fillEarly()
{
    earlyHolder.fill();
    tellWhatIsLeft();
}

void fillBoth()
{
    earlyHolder.fill();
    lateHolder.fill();
    tellWhatIsLeft();
}

void returnWithALocalStatic()
{
    static const std::unique_ptr<System> system = beginSystem();
    static const Subscription heard = system->subscribe(&ignore);
    tellWhatIsLeft();
}

/// What receives something outlives the System, and ends afterwards.
void outliveTheSystem()
{
    static Subscription heard;
    static std::optional<Result<Watch>> watch;
    static std::optional<Result<FormatHold>> hold;
    static const std::unique_ptr<System> system = beginSystem();
    tellWhatIsLeft();
    heard = system->subscribe(&ignore);
    watch.emplace(system->watch(system->snapshot().cards().front().id()));
    hold.emplace(system->holdFormat(speakersId(), otherFormat()));
    printLine(*hold ? "held" : hold->problem().sentence().c_str());
}

/// The System ends with the last of those that it serves.
void endBeforeTheSystem()
{
    static const std::unique_ptr<System> system = beginSystem();
    tellWhatIsLeft();
    static const Subscription heard = system->subscribe(&ignore);
    static const Result<Watch> watch = system->watch(system->snapshot().cards().front().id());
    static const Result<FormatHold> hold = system->holdFormat(speakersId(), otherFormat());
    printLine(hold ? "held" : hold.problem().sentence().c_str());
}

/// Values own nothing of the platform.
void outliveTheSystemWithValues()
{
    static Snapshot snapshot;
    static std::optional<Result<Graph>> graph;
    static std::optional<Result<Settings>> settings;
    static std::optional<Result<Reference>> reference;
    static std::optional<Result<Capture>> captured;
    const std::unique_ptr<System> system = beginSystem();
    tellWhatIsLeft();
    snapshot = system->snapshot();
    graph.emplace(system->graph());
    settings.emplace(system->settings());
    reference.emplace(system->refer(speakersId()));
    captured.emplace(capture(*system));
    printLine(*graph && *settings && *reference && *captured ? "has all" : "lacks some");
}

#if !defined(_WIN32) // where a System must not be one
void returnWithAThreadLocal()
{
    tellWhatIsLeft();
    thread_local const std::unique_ptr<System> system = beginSystem();
}

void endAThreadWithAThreadLocal()
{
    std::thread(
        []
        {
            thread_local const std::unique_ptr<System> system = beginSystem();
            tellWhatIsLeft();
        })
        .join();
    printLine("the thread ends");
}
#else
/// Ends a System where the lock of the loader is held, and the process at once after that.
struct EndedByItsThread
{
    std::unique_ptr<System> system;

    ~EndedByItsThread()
    {
        system.reset();
        printLine("ended");
        TerminateProcess(GetCurrentProcess(), 0);
    }
};

void endASystemWithItsThread()
{
    std::thread([] { thread_local const EndedByItsThread ended{beginSystem()}; }).join();
}
#endif
}

Ways statics()
{
    const Lines inOrder = {"ends", "left: nothing", "the former format"};
    Ways ways = {
        {"static_system_from_before_the_layer", Lines{"3 cards"} + inOrder, &returnOnly},
        {"static_system_from_before_main", Lines{"3 cards"} + inOrder, &returnOnly},
        {"static_system_that_ends_after_the_layer", Lines{"3 cards"} + inOrder, &fillEarly},
        {"static_systems_on_both_sides_of_the_layer", Lines{"3 cards", "3 cards"} + inOrder, &fillBoth},
        {"local_static_system", Lines{"3 cards"} + inOrder, &returnWithALocalStatic},
        {"static_system_that_ends_first", Lines{"3 cards", "held"} + inOrder, &outliveTheSystem},
        {"static_system_that_ends_last", Lines{"3 cards", "held"} + inOrder, &endBeforeTheSystem},
        {"static_values", Lines{"3 cards", "has all"} + inOrder, &outliveTheSystemWithValues},
    };
#if !defined(_WIN32)
    ways.push_back({"thread_local_system", Lines{"3 cards"} + inOrder, &returnWithAThreadLocal});
    ways.push_back({"thread_local_system_of_another_thread", Lines{"3 cards", "the thread ends"} + inOrder,
                    &endAThreadWithAThreadLocal});
#else
    ways.push_back({"thread_local_system_does_not_wait_for_ever", Lines{"3 cards", "ended"}, &endASystemWithItsThread});
#endif
    return ways;
}
}
