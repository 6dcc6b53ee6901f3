// The client layer: what changes the hardware.
#include "tests/faults/memory/clientsubject.h"

namespace faults::memory
{
using namespace sonavit;

namespace
{
class Volumes final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        static_cast<void>(audio().setVolume(endpoint(), Percent(30)));
        static_cast<void>(audio().setVolume(endpoint(), LevelChange::up(Decibels(3))));
        static_cast<void>(audio().setMute(endpoint(), true));
        static_cast<void>(audio().toggleMute(endpoint()));
        static_cast<void>(audio().setVolume(EndpointId("unknown"), Percent(30)));
    }
};

class Controls final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        const Result<std::vector<Control>> controls = audio().controls(endpoint());
        if (!controls || controls->empty())
            return;
        const ControlId control = controls->front().id;
        static_cast<void>(audio().setControl(endpoint(), control, Percent(50)));
        static_cast<void>(audio().setControlMute(endpoint(), control, true));
        static_cast<void>(audio().setControlMute(endpoint(), control.text(), false));
    }
};

class Selecting final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        for (const Card& each : audio().snapshot().cards())
        {
            const Result<std::vector<Selector>> selectors = audio().selectors(each.id());
            if (!selectors || selectors->empty())
                continue;
            static_cast<void>(audio().select(each.id(), selectors->front().id.text(), "0"));
            static_cast<void>(audio().select(selectors->front().id.text(), "1"));
        }
    }
};

class HoldingFormat final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        Result<FormatHold> held = audio().holdFormat(endpoint(), Format::integer(24, 96000, 2));
        if (held)
            static_cast<void>(held->end());
        const Result<FormatHold> left = audio().holdFormat(endpoint(), Format::integer(16, 44100, 2));
    }
};

class SavingAndRestoring final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        const Result<Settings> saved = audio().settings();
        if (!saved)
            return;
        const Result<Settings> read = Settings::parse(saved->text());
        static_cast<void>(audio().setVolume(endpoint(), Percent(10)));
        if (read)
            static_cast<void>(audio().restore(*read));
    }
};
}

std::vector<ClientCase> changingCases()
{
    return {clientCaseOf<Volumes>("volume and mute"), clientCaseOf<Controls>("hardware controls"),
            clientCaseOf<Selecting>("selectors"), clientCaseOf<HoldingFormat>("format"),
            clientCaseOf<SavingAndRestoring>("settings")};
}
}
