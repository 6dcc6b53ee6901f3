#include "tools/sonavit/output/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace sonavit::program
{
namespace
{
/// Whether the kind of terminal that TERM names obeys escape sequences.
bool obeysSequences()
{
    const char* const kind = std::getenv("TERM");
    return kind != nullptr && kind[0] != '\0' && std::string(kind) != "dumb";
}
}

/// The system's streams need nothing else.
class Terminal::Streams
{
};

Terminal::Terminal() = default;

Terminal::~Terminal()
{
    std::cout.flush();
}

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
    return isatty(STDOUT_FILENO) != 0;
}

bool Terminal::hasColours() const
{
    return isTerminal() && areColoursWanted() && obeysSequences();
}

unsigned Terminal::width() const
{
    winsize size{};
    const bool isKnown = isTerminal() && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : statedColumns();
}
}
