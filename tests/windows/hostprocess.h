/// @file
/// Runs programs that load and free a DLL, each in a process of its own.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace hostprocess
{
inline constexpr DWORD patience = 60000; // milliseconds; a process that takes longer counts as hanging

/// How a host has ended, and what it has printed.
struct Outcome
{
    DWORD code = ~DWORD{0};
    std::vector<std::string> lines;
};

inline std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start))
    {
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

/// Reads to the end; the output is small enough for the buffer of a pipe.
inline std::string contents(HANDLE pipe)
{
    std::string text;
    char buffer[4096];
    for (DWORD size = 0; ReadFile(pipe, buffer, sizeof buffer, &size, nullptr) && size > 0;)
        text.append(buffer, size);
    return text;
}

/// Runs the host to its end. A host that hangs is terminated with the exit code WAIT_TIMEOUT.
inline Outcome run(const std::string& host, const std::string& machine, const std::string& end)
{
    SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    EXPECT_TRUE(CreatePipe(&readEnd, &writeEnd, &inherited, 0));
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = writeEnd;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::string command = "\"" + host + "\" " + machine + " " + end;
    PROCESS_INFORMATION process = {};
    const BOOL isStarted =
        CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    CloseHandle(writeEnd);
    Outcome outcome;
    if (!isStarted)
    {
        ADD_FAILURE() << command << " does not start: " << GetLastError();
        CloseHandle(readEnd);
        return outcome;
    }
    if (WaitForSingleObject(process.hProcess, patience) != WAIT_OBJECT_0)
        TerminateProcess(process.hProcess, WAIT_TIMEOUT);
    GetExitCodeProcess(process.hProcess, &outcome.code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    outcome.lines = linesOf(contents(readEnd));
    CloseHandle(readEnd);
    return outcome;
}
}
