#include "tests/ends/runner/child.h"

#include <windows.h>

#include <array>
#include <mutex>
#include <stdexcept>

namespace ends
{
namespace
{
std::string thisProgram()
{
    std::array<char, 4096> path;
    const DWORD size = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return std::string(path.data(), size);
}

/// @param output receives the end of a pipe for its output. No other child may have the other end, so one starts at a
/// time.
PROCESS_INFORMATION start(const std::string& way, HANDLE& output)
{
    static std::mutex starting;
    const std::lock_guard<std::mutex> lock(starting);
    SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    if (!SetEnvironmentVariableA(wayVariable, way.c_str()) ||
        !CreatePipe(&output, &startup.hStdOutput, &inherited, 0) ||
        !SetHandleInformation(output, HANDLE_FLAG_INHERIT, 0))
        throw std::runtime_error("no pipe");
    std::string command = "\"" + thisProgram() + "\"";
    PROCESS_INFORMATION process = {};
    const BOOL isStarted =
        CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    CloseHandle(startup.hStdOutput);
    if (!isStarted)
        throw std::runtime_error("no process");
    return process;
}

/// Reads to the end; the output is small enough for the buffer of a pipe.
std::string contents(HANDLE pipe)
{
    std::string text;
    std::array<char, 4096> buffer;
    for (DWORD size = 0; ReadFile(pipe, buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr) && size > 0;)
        text.append(buffer.data(), size);
    return text;
}
}

Outcome runChild(const std::string& way, const std::vector<std::string>& wrapper, std::chrono::seconds patience)
{
    if (!wrapper.empty())
        throw std::runtime_error("no wrapper on Windows");
    HANDLE output = nullptr;
    const PROCESS_INFORMATION process = start(way, output);
    Outcome outcome;
    const auto milliseconds = static_cast<DWORD>(std::chrono::milliseconds(patience).count());
    outcome.hasHung = WaitForSingleObject(process.hProcess, milliseconds) != WAIT_OBJECT_0;
    if (outcome.hasHung)
        TerminateProcess(process.hProcess, WAIT_TIMEOUT);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    outcome.status = static_cast<int>(status);
    outcome.lines = linesOf(contents(output));
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(output);
    return outcome;
}
}
