#include "simulator/core/simulatedobject.h"

#include "simulator/mutex.h"

#include <mutex>
#include <unordered_map>

namespace sim
{
namespace
{
/// Never destroyed, see the class. A list for each machine that has objects: the census of one machine does not walk
/// through what earlier ones have left.
struct LiveObjects
{
    Mutex mutex;
    std::unordered_map<const State*, SimulatedObject*> firsts;

    static LiveObjects& instance()
    {
        static LiveObjects* const objects = new LiveObjects;
        return *objects;
    }
};
}

const IID simulatedObjectId = {0x5C0A1F6D, 0x2E0B, 0x4C8E, {0x9B, 0x57, 0x1D, 0x4B, 0x6A, 0x90, 0xE3, 0x27}};

SimulatedObject* simulatedObject(IUnknown* unknown)
{
    void* object = nullptr;
    if (unknown == nullptr || FAILED(unknown->QueryInterface(simulatedObjectId, &object)))
        return nullptr;
    return static_cast<SimulatedObject*>(object);
}

SimulatedObject::SimulatedObject(std::shared_ptr<State> state, const char* interfaceName, std::string name)
    : m_state(std::move(state)),
      m_interfaceName(interfaceName),
      m_name(std::move(name)),
      m_madeIn(m_state->callbacks.numberHere())
{
    LiveObjects& objects = LiveObjects::instance();
    const std::lock_guard<Mutex> lock(objects.mutex);
    SimulatedObject*& first = objects.firsts[m_state.get()];
    m_next = first;
    if (m_next != nullptr)
        m_next->m_previous = this;
    first = this;
}

SimulatedObject::~SimulatedObject()
{
    LiveObjects& objects = LiveObjects::instance();
    const std::lock_guard<Mutex> lock(objects.mutex);
    if (m_next != nullptr)
        m_next->m_previous = m_previous;
    if (m_previous != nullptr)
        m_previous->m_next = m_next;
    else if (m_next != nullptr)
        objects.firsts.find(m_state.get())->second = m_next;
    else
        objects.firsts.erase(m_state.get());
}

const std::string& SimulatedObject::name() const
{
    return m_name;
}

const std::shared_ptr<State>& SimulatedObject::state() const
{
    return m_state;
}

void SimulatedObject::count(const State& state, Census& census)
{
    LiveObjects& objects = LiveObjects::instance();
    const std::lock_guard<Mutex> lock(objects.mutex);
    const auto first = objects.firsts.find(&state);
    for (const SimulatedObject* object = first == objects.firsts.end() ? nullptr : first->second; object != nullptr;
         object = object->m_next)
    {
        const long references = static_cast<long>(object->m_references.load()) - (object->m_isKept ? 1 : 0);
        if (references <= 0)
            continue;
        ++census.objects[object->m_interfaceName];
        census.byInterface[object->m_interfaceName] += references;
        census.byObject[std::string(object->m_interfaceName) + " " + object->m_name] += references;
    }
}

void SimulatedObject::keep()
{
    m_isKept = true;
}

void SimulatedObject::lend()
{
    ++m_references;
}

void SimulatedObject::letGo()
{
    m_isKept = false;
    takeBack();
}

void SimulatedObject::takeBack()
{
    if (--m_references == 0)
        delete this;
}

void* SimulatedObject::marshal(IUnknown& self, REFIID iid)
{
    bool added = false;
    void* const found = m_marshaller.find(self, iid, added);
    if (added)
        --m_references;
    return found;
}

ULONG SimulatedObject::addReference()
{
    return m_state->journal.recordingReferences() ? watchedAddReference() : ++m_references;
}

ULONG SimulatedObject::releaseReference()
{
    return isWatched() ? watchedRelease() : dropReference(nullptr);
}

ULONG SimulatedObject::watchedAddReference()
{
    const AnsweringScope answering(true);
    const std::string name = operation("AddRef");
    JournalEntry entry;
    entry.operation = name;
    entry.object = m_name;
    const Journal::Place place = m_state->journal.begin(std::move(entry));
    const ULONG count = ++m_references;
    m_state->journal.end(place, CallEnd::returned, static_cast<HRESULT>(count));
    return count;
}

/// dropReference() may delete the object: after it only copies are used.
ULONG SimulatedObject::watchedRelease()
{
    const AnsweringScope answering(true);
    const std::shared_ptr<State> machine = m_state;
    const std::string objectName = m_name;
    const std::string name = operation("Release");
    WatchedCall watched(*machine, name.c_str(), objectName, WatchedCall::Kind::reference, this);
    watched.begin();
    const ULONG count = dropReference(&watched);
    if (watched.planned() == FaultRule::Outcome::thrown)
        watched.raise();
    watched.end(static_cast<HRESULT>(count));
    return count;
}

ULONG SimulatedObject::dropReference(const WatchedCall* watched)
{
    const ULONG count = --m_references;
    if (count > 0)
        return count;
    if (m_state->callbacks.here() != nullptr)
        reportForbiddenRelease(watched == nullptr ? m_state->journal.size() : watched->place());
    delete this;
    return count;
}

void SimulatedObject::reportForbiddenRelease(std::size_t place) const
{
    const AnsweringScope answering(true);
    const CallbackScope& callback = *m_state->callbacks.here();
    const std::string device =
        m_state->withHardware([&](const Hardware& hardware) { return hardware.deviceOf(m_name); });
    if (!callback.allowsLastRelease(m_madeIn, device))
        m_state->callbacks.report(
            {Violation::Kind::lastRelease, operation("Release") + "() on " + m_name, place, callback.text()});
}

HRESULT SimulatedObject::storeText(const char* operation, const Text& text, LPWSTR* result) const
{
    return text ? storeText(operation, *text, result) : S_OK;
}

HRESULT SimulatedObject::storeText(const char* operation, const std::string& text, LPWSTR* result) const
{
    *result = TaskMemory::instance().allocateText(text, m_state->number, {operation, m_name});
    return *result == nullptr ? E_OUTOFMEMORY : S_OK;
}

void* SimulatedObject::allocate(const char* operation, std::size_t bytes) const
{
    return TaskMemory::instance().allocate(bytes, m_state->number, {operation, m_name});
}

bool SimulatedObject::isWatched() const
{
    return m_state->journal.recordingReferences() || !m_state->faults.isEmpty();
}

std::string SimulatedObject::operation(const char* name) const
{
    return std::string(m_interfaceName) + "::" + name;
}
}
