#include "simulator/core/callbacks.h"

#include "simulator/journal.h"
#include "simulator/machine/casefolding.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>

namespace sim
{
namespace
{
thread_local const CallbackScope* innermost = nullptr;

std::uint64_t nextNumber()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

std::string callText(const char* operation, const std::vector<std::string>& arguments)
{
    JournalEntry entry;
    entry.operation = operation;
    entry.arguments = arguments;
    return entry.call();
}
}

const CallbackScope* Callbacks::here() const
{
    if (!areRunning())
        return nullptr;
    const CallbackScope* scope = innermost;
    while (scope != nullptr && &scope->m_owner != this)
        scope = scope->m_previous;
    return scope;
}

std::uint64_t Callbacks::numberHere() const
{
    const CallbackScope* const scope = here();
    return scope == nullptr ? 0 : scope->m_number;
}

std::string Callbacks::textOn(const std::vector<std::thread::id>& threads) const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    const auto isMeant = [&](const CallbackScope* scope)
    { return std::find(threads.begin(), threads.end(), scope->m_thread) != threads.end(); };
    const auto found = std::find_if(m_scopes.begin(), m_scopes.end(), isMeant);
    return found == m_scopes.end() ? std::string() : (*found)->text();
}

void Callbacks::report(const Violation& violation)
{
    Handler handler;
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        m_violations.push_back(violation);
        handler = m_handler;
    }
    if (handler)
        handler(violation);
}

std::vector<Violation> Callbacks::violations() const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    return m_violations;
}

void Callbacks::onViolation(Handler handler)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_handler = std::move(handler);
}

void Callbacks::setPatience(std::chrono::milliseconds patience)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_patience = patience;
}

std::chrono::milliseconds Callbacks::patience() const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    return m_patience;
}

CallbackScope::CallbackScope(Callbacks& owner, const char* operation, const std::string& object,
                             const std::vector<std::string>& arguments)
    : m_owner(owner),
      m_previous(innermost),
      m_thread(std::this_thread::get_id()),
      m_number(nextNumber()),
      m_text(callText(operation, arguments)),
      m_removed(std::strcmp(operation, "IMMNotificationClient::OnDeviceRemoved") == 0 ? object : std::string())
{
    const std::lock_guard<Mutex> lock(owner.m_mutex);
    owner.m_scopes.push_back(this);
    ++owner.m_running;
    innermost = this;
}

CallbackScope::~CallbackScope()
{
    innermost = m_previous;
    const std::lock_guard<Mutex> lock(m_owner.m_mutex);
    m_owner.m_scopes.erase(std::find(m_owner.m_scopes.begin(), m_owner.m_scopes.end(), this));
    --m_owner.m_running;
}

/// Ids compare regardless of case, as the platform and the library do.
bool CallbackScope::allowsLastRelease(std::uint64_t madeIn, const std::string& deviceId) const
{
    for (const CallbackScope* scope = this; scope != nullptr; scope = scope->outer())
    {
        const bool isMadeHere = scope->m_number == madeIn;
        const bool isRemovedHere = !scope->m_removed.empty() && equalNoCase(scope->m_removed, deviceId);
        if (isMadeHere || isRemovedHere)
            return true;
    }
    return false;
}

/// The callback of the same machine in which this one was made.
const CallbackScope* CallbackScope::outer() const
{
    const CallbackScope* scope = m_previous;
    while (scope != nullptr && &scope->m_owner != &m_owner)
        scope = scope->m_previous;
    return scope;
}
}
