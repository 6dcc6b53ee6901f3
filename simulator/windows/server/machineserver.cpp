#include "simulator/windows/server/machineserver.h"

#include "simulator/core/state.h"
#include "simulator/core/utf16.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/printable.h"
#include "simulator/windows/enumeratorfactory.h"
#include "simulator/windows/server/message.h"

#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace sim::server
{
namespace
{
using FileName = std::wstring;

/// The value of an environment variable; empty if it is not set.
std::wstring environment(const wchar_t* name)
{
    std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0'); // the size includes the terminating zero
    value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

/// What the environment asks for.
struct Settings
{
    std::string machine = utf8(environment(L"SONAVIT_MACHINE").c_str());
    std::string account = utf8(environment(L"SONAVIT_ACCOUNT").c_str());
    FileName journal = environment(L"SONAVIT_JOURNAL");
    FileName census = environment(L"SONAVIT_CENSUS");

    /// The account under which the program uses @p described. Throws std::runtime_error for an unknown name.
    Account accountOf(const Machine& described) const
    {
        if (account.empty())
            return described.account;
        if (const std::optional<Account> chosen = valueOf(accountNames, account))
            return *chosen;
        throw std::runtime_error("SONAVIT_ACCOUNT is " + inQuotes(account) + "; set it to " + oneOf(accountNames));
    }
};

/// The machine of this process, and what it leaves. Never destroyed: objects of the program may outlive this library's
/// static objects.
struct Server
{
    std::once_flag started;
    Settings settings;
    std::shared_ptr<State> state; ///< null if there is no machine

    /// Null before the first call of instance().
    static inline std::atomic<const Server*> made{nullptr};

    static Server& instance()
    {
        static Server* const server = new Server;
        made = server;
        return *server;
    }

    void begin()
    {
        try
        {
            if (settings.machine.empty())
                throw std::runtime_error("SONAVIT_MACHINE is not set; set it to the name or the file of a machine");
            Machine machine = findMachine(settings.machine);
            machine.account = settings.accountOf(machine);
            state = State::create(std::move(machine));
            state->journal.record(!settings.journal.empty());
            serveAllApartments();
            pushCurrentState(state);
        }
        catch (const std::exception& error)
        {
            writeMessage("no machine: " + std::string(error.what()));
        }
    }
};

/// The system's function, not the library's: other threads may have been terminated with its locks.
bool write(const FileName& name, const std::string& text)
{
    const HANDLE file =
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    const auto size = static_cast<DWORD>(text.size());
    const bool isDone = WriteFile(file, text.data(), size, &written, nullptr) && written == size;
    CloseHandle(file);
    return isDone;
}

template<class Record>
void writeRecord(const FileName& name, const char* what, const Record& record)
{
    if (name.empty())
        return;
    std::ostringstream text;
    text << record;
    std::string lines = text.str();
    if (!lines.empty() && lines.back() != '\n')
        lines += '\n';
    if (!write(name, lines))
        writeMessage("cannot write the " + std::string(what) + " to " + utf8(name.c_str()));
}
}

HRESULT start()
{
    Server& server = Server::instance();
    std::call_once(server.started, [&] { server.begin(); });
    return server.state == nullptr ? CLASS_E_CLASSNOTAVAILABLE : S_OK;
}

void writeRecords()
{
    const Server* const server = Server::made;
    if (server == nullptr || server->state == nullptr)
        return;
    writeRecord(server->settings.journal, "journal", server->state->journal.entries());
    writeRecord(server->settings.census, "census", server->state->census());
}
}
