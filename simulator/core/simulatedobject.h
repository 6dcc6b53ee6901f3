/// @file
/// Base of every COM object of the simulated machine: machine, name, reference count, watched calls.
#pragma once

#include "simulator/core/answeringscope.h"
#include "simulator/core/argumenttext.h"
#include "simulator/core/interfaces.h"
#include "simulator/core/marshaller.h"
#include "simulator/core/state.h"
#include "simulator/core/taskmemory.h"
#include "simulator/core/watchedcall.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace sim
{
/// Is in its machine's list of live objects from construction to destruction. The lists are never destroyed: objects
/// that users forget to release stay reachable, and the census reports them.
class SimulatedObject : public FinelyNamed
{
public:
    SimulatedObject(const SimulatedObject&) = delete;
    SimulatedObject& operator=(const SimulatedObject&) = delete;

    const std::string& name() const;
    const std::shared_ptr<State>& state() const;

    /// Adds the live objects of @p state to @p census. A reference of the machine's own does not count.
    static void count(const State& state, Census& census);

    /// The reference from construction becomes the machine's own; see KeptObject.
    void keep();
    /// One more reference for a user, which no user has asked for by AddRef.
    void lend();
    /// Drops a reference that lend() added, unseen by journal and fault plan. The last one deletes the object.
    void takeBack();
    /// Drops the machine's own reference in the same way.
    void letGo();

protected:
    SimulatedObject(std::shared_ptr<State> state, const char* interfaceName, std::string name);
    virtual ~SimulatedObject();

    /// Both return the new count. The last release deletes the object.
    ULONG addReference();
    ULONG releaseReference();
    /// IMarshal of @p self, which is this object, without a reference; null for any other identifier.
    void* marshal(IUnknown& self, REFIID iid);
    /// QueryInterface with journal and fault plan; @p find returns a pointer without a reference, or null.
    template<class Find>
    HRESULT query(REFIID iid, void** object, const Find& find);

    /// One call of an operation of this object; see watchedCall().
    template<class Outputs, class Body, class... Arguments>
    HRESULT call(const char* operation, const Outputs& outputs, const Body& body, const Arguments&... arguments)
    {
        return watchedCall(*m_state, operation, m_name, this, outputs, body, arguments...);
    }

    /// Stores a copy of @p text in task memory; a null pointer if @p text has no value.
    HRESULT storeText(const char* operation, const Text& text, LPWSTR* result) const;
    HRESULT storeText(const char* operation, const std::string& text, LPWSTR* result) const;
    void* allocate(const char* operation, std::size_t bytes) const;

private:
    bool isWatched() const;
    std::string operation(const char* name) const;
    ULONG watchedAddReference();
    ULONG watchedRelease();
    ULONG dropReference(const WatchedCall* watched);
    void reportForbiddenRelease(std::size_t place) const;

    const std::shared_ptr<State> m_state;
    const char* const m_interfaceName;
    const std::string m_name;
    const std::uint64_t m_madeIn; ///< the callback in which it was made, by number; 0 outside callbacks
    std::atomic<ULONG> m_references{1};
    std::atomic<bool> m_isKept{false};
    Marshaller m_marshaller;
    SimulatedObject* m_previous = nullptr;
    SimulatedObject* m_next = nullptr;
};

/// The identifier by which the machine recognises its own objects. A query for it stores the SimulatedObject; it is not
/// recorded and adds no reference.
extern const IID simulatedObjectId;

/// The simulated object that @p unknown belongs to; null for other objects and for null.
SimulatedObject* simulatedObject(IUnknown* unknown);

/// A COM object with Interfaces. The first one is its identity and its name in the census.
template<class... Interfaces>
class ComObject : public SimulatedObject, public Interfaces...
{
    using Identity = std::tuple_element_t<0, std::tuple<Interfaces...>>;

public:
    ComObject(std::shared_ptr<State> state, std::string name)
        : ComObject(std::move(state), std::move(name), InterfaceTraits<Identity>::name)
    {
    }

    /// With another name in the census than that of its identity.
    ComObject(std::shared_ptr<State> state, std::string name, const char* interfaceName)
        : SimulatedObject(std::move(state), interfaceName, std::move(name))
    {
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        return query(iid, object, [&] { return find(iid); });
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return addReference(); }

    ULONG STDMETHODCALLTYPE Release() override { return releaseReference(); }

private:
    void* find(REFIID iid)
    {
        if (IsEqualGUID(iid, InterfaceTraits<IUnknown>::iid()))
            return static_cast<IUnknown*>(static_cast<Identity*>(this));
        if (IsEqualGUID(iid, simulatedObjectId))
            return static_cast<SimulatedObject*>(this);
        void* found = nullptr;
        (void)((extends<Interfaces>(iid) && (found = static_cast<Interfaces*>(this))) || ...);
        return found != nullptr ? found : marshal(*static_cast<Identity*>(this), iid);
    }
};

template<class Find>
HRESULT SimulatedObject::query(REFIID iid, void** object, const Find& find)
{
    if (object != nullptr && IsEqualGUID(iid, simulatedObjectId))
    {
        *object = find();
        return S_OK;
    }
    const auto answer = [&]() -> HRESULT
    {
        *object = find();
        if (*object == nullptr)
            return E_NOINTERFACE;
        ++m_references;
        return S_OK;
    };
    if (!isWatched())
        return object == nullptr ? E_POINTER : answer();

    const AnsweringScope answering(true);
    const std::string name = operation("QueryInterface");
    WatchedCall watched(*m_state, name.c_str(), m_name, WatchedCall::Kind::reference, this);
    watched.setArguments({argumentText(iid)});
    return answerCall(watched, outputs(object), answer);
}

}
