#include "tests/program/windows/pseudoconsole.h"

#include <array>
#include <cctype>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace support
{
namespace
{
// The SDK declares pseudo consoles for Windows 10 only.
using Create = HRESULT(WINAPI*)(COORD, HANDLE, HANDLE, DWORD, void**);
using Close = void(WINAPI*)(void*);
constexpr DWORD_PTR pseudoConsoleAttribute = 0x00020016;

template<class Function>
Function systemFunction(const char* name)
{
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

/// The text of a screen that was written with escape sequences. A cursor that moves on leaves blanks.
std::string withoutSequences(const std::string& bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        if (bytes[i] != '\x1B')
        {
            text += bytes[i] == '\r' ? "" : std::string(1, bytes[i]);
            continue;
        }
        std::size_t end = i + 1;
        while (end < bytes.size() && std::isalpha(static_cast<unsigned char>(bytes[end])) == 0)
            ++end;
        if (end < bytes.size() && bytes[end] == 'C')
            text.append(static_cast<std::size_t>(std::atoi(bytes.c_str() + i + 2)), ' ');
        i = end;
    }
    return text;
}
}

PseudoConsole::PseudoConsole(const std::wstring& command, short columns)
{
    constexpr short rows = 60;
    HANDLE input = nullptr;
    HANDLE output = nullptr;
    CreatePipe(&input, &m_keys, nullptr, 0);
    CreatePipe(&m_output, &output, nullptr, 0);
    const auto create = systemFunction<Create>("CreatePseudoConsole");
    if (create == nullptr || FAILED(create(COORD{columns, rows}, input, output, 0, &m_console)))
        throw std::runtime_error("no pseudo console");
    CloseHandle(input);
    CloseHandle(output);
    start(L"cmd.exe /c \"" + command + L" >CON 2>CON\"");
    m_reader = std::thread([this] { readScreen(); });
}

PseudoConsole::~PseudoConsole()
{
    if (m_process != nullptr)
        TerminateProcess(m_process, 1);
    end();
    CloseHandle(m_keys);
    CloseHandle(m_output);
}

DWORD PseudoConsole::end()
{
    if (m_process == nullptr)
        return 0;
    DWORD code = 0;
    WaitForSingleObject(m_process, INFINITE);
    GetExitCodeProcess(m_process, &code);
    CloseHandle(m_process);
    m_process = nullptr;
    systemFunction<Close>("ClosePseudoConsole")(m_console);
    m_reader.join();
    return code;
}

std::string PseudoConsole::screen()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return withoutSequences(m_bytes);
}

void PseudoConsole::start(std::wstring command)
{
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    std::vector<unsigned char> memory(size);
    STARTUPINFOEXW info{};
    info.StartupInfo.cb = sizeof(info);
    info.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data());
    PROCESS_INFORMATION process{};
    InitializeProcThreadAttributeList(info.lpAttributeList, 1, 0, &size);
    UpdateProcThreadAttribute(info.lpAttributeList, 0, pseudoConsoleAttribute, m_console, sizeof(m_console), nullptr,
                              nullptr);
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                       &info.StartupInfo, &process) == FALSE)
        throw std::runtime_error("no process on the pseudo console");
    CloseHandle(process.hThread);
    m_process = process.hProcess;
}

void PseudoConsole::readScreen()
{
    std::array<char, 4096> buffer{};
    DWORD size = 0;
    while (ReadFile(m_output, buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr) != FALSE && size > 0)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bytes.append(buffer.data(), size);
    }
}
}
