#pragma once

#include "platform/coreaudio.h"

#include <mutex>
#include <string>
#include <thread>

namespace support
{
/// A console without a window in which one command runs.
class PseudoConsole
{
public:
    /// Starts @p command, in UTF-16, with the console as its standard output and standard error.
    PseudoConsole(const std::wstring& command, short columns);
    ~PseudoConsole();
    PseudoConsole(const PseudoConsole&) = delete;
    PseudoConsole& operator=(const PseudoConsole&) = delete;

    /// Waits for the command interpreter's end and closes the console. @return the command's exit code
    DWORD end();

    /// All that was on the screen, in UTF-8, without the sequences that move the cursor.
    std::string screen();

private:
    void start(std::wstring command);
    void readScreen();

    void* m_console = nullptr;
    HANDLE m_keys = nullptr; ///< open, as the console ends with its keyboard
    HANDLE m_output = nullptr;
    HANDLE m_process = nullptr;
    std::mutex m_mutex;
    std::string m_bytes;
    std::thread m_reader;
};
}
