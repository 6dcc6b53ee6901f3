#include "tools/sonavit/terminal.h"

#include <cstdlib>

#if defined(_WIN32)
#include "platform/coreaudio.h"

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace sonavit
{
namespace
{
bool isSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && value[0] != '\0';
}

/// The terminal's own answer; 0 where it has none.
unsigned terminalWidth()
{
#if defined(_WIN32)
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == FALSE)
        return 0;
    const int width = info.srWindow.Right - info.srWindow.Left + 1;
    return width > 0 ? static_cast<unsigned>(width) : 0;
#else
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
#endif
}

/// Whether the terminal understands the sequences that paint text.
bool takesSequences()
{
#if defined(_WIN32)
    constexpr DWORD virtualTerminal = 0x4; // ENABLE_VIRTUAL_TERMINAL_PROCESSING, which not every SDK has
    HANDLE const output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) != FALSE && SetConsoleMode(output, mode | virtualTerminal) != FALSE;
#else
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && std::string(terminal) != "dumb";
#endif
}
}

void prepareOutput()
{
#if defined(_WIN32)
    SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdout), _O_BINARY); // otherwise each line end would get a carriage return
#endif
}

bool isOutputTerminal()
{
#if defined(_WIN32)
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != FALSE;
#else
    return isatty(STDOUT_FILENO) != 0;
#endif
}

bool hasOutputColours()
{
    return isOutputTerminal() && !isSet("NO_COLOR") && takesSequences();
}

unsigned outputWidth()
{
    const unsigned width = isOutputTerminal() ? terminalWidth() : 0;
    if (width > 0 || !isSet("COLUMNS"))
        return width;
    const unsigned long columns = std::strtoul(std::getenv("COLUMNS"), nullptr, 10);
    return columns <= 10000 ? static_cast<unsigned>(columns) : 0;
}

#if defined(_WIN32)

/// The words that main() got are in the system's code page, which has not all characters.
std::vector<std::string> commandLineWords(int, char**)
{
    int count = 0;
    LPWSTR* const wideWords = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; wideWords != nullptr && i < count; ++i)
    {
        const int size = WideCharToMultiByte(CP_UTF8, 0, wideWords[i], -1, nullptr, 0, nullptr, nullptr);
        std::string word(static_cast<std::size_t>(size > 0 ? size : 1), '\0');
        WideCharToMultiByte(CP_UTF8, 0, wideWords[i], -1, word.data(), size, nullptr, nullptr);
        word.pop_back(); // the terminating zero
        result.push_back(word);
    }
    LocalFree(wideWords);
    return result;
}

#else

std::vector<std::string> commandLineWords(int count, char** words)
{
    return {words + 1, words + (count > 0 ? count : 1)};
}

#endif
}
