#include "tools/sonavit/output/terminal.h"

#include "platform/coreaudio.h"
#include "tools/sonavit/windows/consolebuffer.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <iostream>
#include <optional>

namespace sonavit::program
{
namespace
{
constexpr DWORD virtualTerminal = 0x4; // ENABLE_VIRTUAL_TERMINAL_PROCESSING, which not every SDK has

/// Only a console takes characters, here none. A handle that may only write, as of a redirection to CON, is enough.
bool isConsole(HANDLE output)
{
    DWORD written = 0;
    return WriteConsoleW(output, L"", 0, &written, nullptr) != FALSE;
}

/// The console's screen, opened to read as well, which a standard handle may not.
class Screen
{
public:
    Screen()
        : m_handle(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, 0, nullptr))
    {
    }

    ~Screen()
    {
        if (m_handle != INVALID_HANDLE_VALUE)
            CloseHandle(m_handle);
    }

    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    HANDLE handle() const { return m_handle; }

private:
    HANDLE m_handle;
};

ConsoleBuffer::Write writerTo(HANDLE console)
{
    return [console](std::wstring_view units)
    {
        DWORD written = 0;
        const auto count = static_cast<DWORD>(units.size());
        return WriteConsoleW(console, units.data(), count, &written, nullptr) != FALSE && written == count;
    };
}

/// Whether @p screen moves its cursor for an escape sequence, that is, shows it as text.
bool showsSequences(HANDLE screen)
{
    constexpr std::wstring_view reset = L"\x1B[0m";
    CONSOLE_SCREEN_BUFFER_INFO info{};
    DWORD written = 0;
    const auto count = static_cast<DWORD>(reset.size());
    const bool isKnown = WriteConsoleW(screen, reset.data(), count, &written, nullptr) != FALSE &&
                         GetConsoleScreenBufferInfo(screen, &info) != FALSE;
    return !isKnown || info.dwCursorPosition.X != 0;
}

/// Some consoles accept the mode and show the sequences all the same: so one is tried on a screen that is never shown.
bool obeysSequences()
{
    HANDLE const screen =
        CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, 0, nullptr, CONSOLE_TEXTMODE_BUFFER, nullptr);
    if (screen == INVALID_HANDLE_VALUE)
        return false;
    DWORD mode = 0;
    const bool doesObey = GetConsoleMode(screen, &mode) != FALSE &&
                          SetConsoleMode(screen, mode | virtualTerminal) != FALSE && !showsSequences(screen);
    CloseHandle(screen);
    return doesObey;
}

/// The mode of a console in which it obeys escape sequences, for as long as this lives.
class SequenceMode
{
public:
    explicit SequenceMode(HANDLE console) : m_console(console)
    {
        m_isOn = GetConsoleMode(console, &m_before) != FALSE && obeysSequences() &&
                 SetConsoleMode(console, m_before | virtualTerminal) != FALSE;
    }

    ~SequenceMode()
    {
        if (m_isOn)
            SetConsoleMode(m_console, m_before);
    }

    SequenceMode(const SequenceMode&) = delete;
    SequenceMode& operator=(const SequenceMode&) = delete;

    bool isOn() const { return m_isOn; }

private:
    HANDLE m_console;
    DWORD m_before = 0;
    bool m_isOn = false;
};

/// A standard stream of C++, which writes to the console, if it has one, while this lives.
class StandardStream
{
public:
    StandardStream(std::ostream& stream, DWORD number) : m_stream(stream), m_handle(GetStdHandle(number))
    {
        if (isConsole(m_handle))
            m_before = stream.rdbuf(&m_console.emplace(writerTo(m_handle)));
    }

    ~StandardStream()
    {
        m_stream.flush();
        if (m_console)
            m_stream.rdbuf(m_before);
    }

    StandardStream(const StandardStream&) = delete;
    StandardStream& operator=(const StandardStream&) = delete;

    bool isOnConsole() const { return m_console.has_value(); }

private:
    std::ostream& m_stream;
    HANDLE m_handle;
    std::optional<ConsoleBuffer> m_console;
    std::streambuf* m_before = nullptr;
};
}

class Terminal::Streams
{
public:
    Streams() : m_out(std::cout, STD_OUTPUT_HANDLE), m_err(std::cerr, STD_ERROR_HANDLE)
    {
        if (m_out.isOnConsole() && areColoursWanted())
            m_sequences.emplace(m_screen.handle());
    }

    bool isTerminal() const { return m_out.isOnConsole(); }
    bool hasColours() const { return m_sequences && m_sequences->isOn(); }

    /// A console without sequences puts the cursor on the next line when the last column is full, and a line end then
    /// makes an empty line: so that column stays free.
    unsigned width() const
    {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        if (!isTerminal() || GetConsoleScreenBufferInfo(m_screen.handle(), &info) == FALSE)
            return 0;
        const int columns = info.srWindow.Right - info.srWindow.Left;
        return columns > 0 ? static_cast<unsigned>(columns) : 0;
    }

private:
    Screen m_screen;
    std::optional<SequenceMode> m_sequences; // ends after the streams, which may still hold sequences
    StandardStream m_out;
    StandardStream m_err;
};

Terminal::Terminal()
{
    _setmode(_fileno(stdout), _O_BINARY); // a file or pipe would get a carriage return at each line end
    m_streams = std::make_unique<Streams>();
}

Terminal::~Terminal() = default;

std::ostream& Terminal::out()
{
    return std::cout;
}

std::ostream& Terminal::err()
{
    return std::cerr;
}

bool Terminal::isTerminal() const
{
    return m_streams->isTerminal();
}

bool Terminal::hasColours() const
{
    return m_streams->hasColours();
}

unsigned Terminal::width() const
{
    const unsigned width = m_streams->width();
    return width > 0 ? width : statedColumns();
}
}
