#include "tools/sonavit/session.h"

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "sonavit/system.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <chrono>
#include <utility>

namespace sonavit::program
{
namespace
{
/// Long enough for many slow devices; a user who has less of it ends the program.
constexpr std::chrono::minutes patience(1);
/// Reading everything is one question.
constexpr std::chrono::minutes patienceForAll(5);

bool readsEverything(Verb verb)
{
    return verb == Verb::capture || verb == Verb::doctor || verb == Verb::explain;
}

sim::Machine openMachine(const Environment& environment, const std::string& name)
{
    try
    {
        return environment.findMachine(name);
    }
    catch (const sim::UnknownMachine&)
    {
        throw UsageError("there is no machine " + inQuotes(name) + "; the machines are " +
                         enumeration(sim::machineNames()));
    }
    catch (const sim::MachineFileError& error)
    {
        throw UsageError("the machine cannot be used: " + std::string(error.what()));
    }
}
}

Session::Session(const Environment& environment, const Arguments& arguments)
    : m_onWorkerStart(environment.onWorkerStart),
      m_redirection(reinterpret_cast<const void*>(&enumerateSoundCards)),
      m_layerRedirection(reinterpret_cast<const void*>(&compareIds)),
      m_patience(readsEverything(arguments.verb) ? patienceForAll : patience),
      m_via(arguments.via)
{
    const std::optional<std::string>& name = arguments.machine ? arguments.machine : environment.defaultMachine;
    std::optional<sim::Machine> machine;
    if (name)
    {
        machine = openMachine(environment, *name);
        m_name = machine->name.empty() ? *name : machine->name;
        m_description = machine->description;
        machine->account = arguments.account.value_or(machine->account);
        machine->latencyPreset = arguments.latency.value_or(machine->latencyPreset);
    }
    else if (arguments.account || arguments.latency)
        throw UsageError((arguments.account ? "--account" : "--latency") +
                         std::string(" needs a simulated machine, which --machine names"));
    AudioDevice::setStoreAccess(StoreAccess::writeElseRead);
    // The shared enumerator initialises COM in the same way; another way would leave the counts of the two unbalanced.
    m_hasCom = SUCCEEDED(CoInitialize(nullptr));
    if (!machine)
        return;
    m_simulation = std::make_unique<sim::Simulation>(std::move(*machine));
    m_simulation->journal().record(false); // it is never read, and would grow for as long as a monitor runs
}

/// A session that was not closed ends with an exception under way; a second one would end the process.
Session::~Session()
{
    try
    {
        close();
    }
    catch (...) // NOLINT(bugprone-empty-catch): the first exception is the one to report
    {
    }
    if (m_hasCom)
        CoUninitialize();
}

/// The simulation ends first, and with it its notification thread: after that no other thread uses what is destroyed.
/// The client layer ends before that, as its worker releases objects of the machine.
void Session::close()
{
    m_source.reset();
    m_audio.reset();
    m_simulation.reset();
    libSonavit::AudioDeviceEnumeratorFactory::enumerator() = nullptr;
}

System& Session::audio()
{
    if (!m_audio)
    {
        System::Options options;
        options.delivery = Delivery::poll;
        options.patience = m_patience;
        options.onWorkerStart = [this]
        {
            if (m_simulation)
                static_cast<void>(m_simulation->registerOnThisThread());
            else
                m_onWorkerStart();
        };
        m_audio = std::make_unique<System>(std::move(options));
    }
    return *m_audio;
}

Source& Session::source()
{
    if (!m_source)
        m_source = m_via == Via::layer ? sourceFrom(audio()) : sourceFromObjectModel();
    return *m_source;
}

sim::Simulation* Session::simulation()
{
    return m_simulation.get();
}

const std::optional<std::string>& Session::machineName() const
{
    return m_name;
}

const std::string& Session::machineDescription() const
{
    return m_description;
}
}
