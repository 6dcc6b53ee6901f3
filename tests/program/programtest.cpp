#include "tests/program/programtest.h"

#include "COM/identifiers.h"
#include "simulator/machine/propertykeys.h"

#include <algorithm>
#include <set>
#include <thread>
#include <utility>

namespace support
{
namespace
{
const char* const cardName = "Analog Audio";

/// Fills @p builder and gives the ids of what was built.
struct SmallMachine
{
    SmallMachine() : builder("small")
    {
        sim::CardBuilder card = builder.card(cardName);
        sim::EndpointBuilder speaker = card.speaker("Speakers");
        speaker.isDefault().level(-18.0f).hardwareVolume({-65.25f, 0.0f, 0.75f, -6.0f}).hardwareMute();
        sim::EndpointBuilder headphones = card.headphones("Headphones").unplugged().level(-30.0f);
        sim::EndpointBuilder microphone = card.microphone("Microphone");
        sim::EndpointVolume volume;
        volume.minimum = -34.5f;
        volume.maximum = 12.0f;
        volume.step = 1.5f;
        microphone.volume(volume).muted();
        ids = {speaker.id(), headphones.id(), microphone.id()};
        cardId = card.instancePath();
        instanceId = card.instanceId();
    }

    sim::MachineBuilder builder;
    std::vector<std::string> ids;
    std::string cardId;
    std::string instanceId;
};
}

std::vector<std::string> Answer::lines() const
{
    std::vector<std::string> result;
    std::istringstream stream(out);
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

/// The commands send the log where their user wants it; as little as a user gets is enough here.
ProgramTest::ProgramTest()
{
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_ERROR);
}

sim::Simulation& ProgramTest::run(sim::Machine machine)
{
    m_isRunning = true;
    return LibraryTest::run(std::move(machine));
}

/// What the object model keeps of a call, it has asked for on the test's thread; the client layer asks on its own.
void ProgramTest::TearDown()
{
    if (m_isRunning)
    {
        kept.partsLists = static_cast<long>(succeededHere("IPart::EnumPartsIncoming").size() +
                                            succeededHere("IPart::EnumPartsOutgoing").size());
        kept.directSoundTexts = directSoundTexts() + unfreedValues();
    }
    LibraryTest::TearDown();
}

/// The texts of DirectSound GUIDs that the object model has read; adapters have none.
long ProgramTest::directSoundTexts()
{
    const sim::Machine machine = simulation().machine();
    const std::string key = sim::keyText(propertykeys::directSoundGuid);
    long count = 0;
    for (const sim::JournalEntry& call : succeededHere("IPropertyStore::GetValue"))
    {
        const sim::Endpoint* const endpoint = machine.endpoint(call.object);
        const bool isThere =
            endpoint != nullptr && sim::findProperty(endpoint->properties, propertykeys::directSoundGuid) != nullptr;
        count += isThere && call.arguments.front() == key ? 1 : 0;
    }
    return count;
}

/// The values with memory of their own that the platform has failed to free.
long ProgramTest::unfreedValues()
{
    const std::set<std::string> withMemory = {std::to_string(VT_LPSTR), std::to_string(VT_LPWSTR),
                                              std::to_string(VT_BLOB), std::to_string(VT_CLSID)};
    const sim::JournalEntries calls = simulation().journal().of("PropVariantClear");
    const auto isKept = [&](const sim::JournalEntry& call)
    { return FAILED(call.result) && withMemory.count(call.arguments.front()) != 0; };
    return static_cast<long>(std::count_if(calls.begin(), calls.end(), isKept));
}

std::vector<sim::JournalEntry> ProgramTest::succeededHere(const std::string& operation)
{
    std::vector<sim::JournalEntry> calls;
    for (const sim::JournalEntry& call : simulation().journal().of(operation).onThread(std::this_thread::get_id()))
    {
        if (call.end == sim::CallEnd::returned && SUCCEEDED(call.result))
            calls.push_back(call);
    }
    return calls;
}

sonavit::program::Environment ProgramTest::environment(std::ostream& out, std::ostream& err)
{
    sonavit::program::Environment environment{out, err};
    environment.readInput = [this] { return input; };
    environment.isTerminal = isTerminal;
    environment.hasColours = hasColours;
    environment.width = width;
    environment.pause = pause;
    environment.deferEnd = deferEnd;
    environment.findMachine = findMachine;
    environment.onWorkerStart = onWorkerStart;
    return environment;
}

Answer ProgramTest::call(const std::vector<std::string>& words)
{
    std::ostringstream out;
    std::ostringstream err;
    Answer answer;
    answer.code = sonavit::program::run(words, environment(out, err));
    answer.out = out.str();
    answer.err = err.str();
    return answer;
}

void meet(sim::Simulation& simulation)
{
    static_cast<void>(simulation.registerOnThisThread());
}

namespace
{
sonavit::System::Options optionsOf(sim::Simulation& simulation)
{
    sonavit::System::Options options;
    options.delivery = sonavit::Delivery::poll;
    options.onWorkerStart = [&simulation] { meet(simulation); };
    return options;
}
}

Observer::Observer(sim::Simulation& simulation)
    : m_audio(optionsOf(simulation)),
      m_subscription(m_audio.subscribe([](const sonavit::Change&) {}))
{
}

void Observer::wait(std::chrono::milliseconds longest)
{
    m_audio.poll(longest);
}

std::string unreadableNote(std::size_t endpoints)
{
    return "sonavit: the system does not let this account read the properties of " + std::to_string(endpoints) +
           (endpoints == 1 ? " endpoint" : " endpoints") + ", so names and cards are missing\n";
}

std::string testName(std::string machine)
{
    machine.erase(std::remove(machine.begin(), machine.end(), '-'), machine.end());
    return machine;
}

sim::Machine smallMachine()
{
    return SmallMachine().builder.build();
}

std::string speakerId()
{
    return SmallMachine().ids[0];
}

std::string headphonesId()
{
    return SmallMachine().ids[1];
}

std::string microphoneId()
{
    return SmallMachine().ids[2];
}

std::string smallCardId()
{
    return SmallMachine().cardId;
}

std::string smallInstanceId()
{
    return SmallMachine().instanceId;
}
}
