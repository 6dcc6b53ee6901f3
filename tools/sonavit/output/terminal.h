#pragma once

#include <memory>
#include <ostream>

namespace sonavit::program
{
/// Standard output and standard error as this system has them. One at a time; at its end it writes what is left and
/// puts back what it has changed.
///
/// Both streams take UTF-8. On Windows a console receives it as UTF-16 when the stream is flushed; a file or a pipe
/// receives the bytes unchanged.
class Terminal
{
public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    std::ostream& out();
    std::ostream& err();

    /// Whether standard output is a terminal.
    bool isTerminal() const;

    /// Whether standard output shows colours: it is a terminal that obeys escape sequences, and NO_COLOR is not set.
    bool hasColours() const;

    /// The columns that a line may take; 0 for no limit: standard output is no terminal and COLUMNS is not set.
    unsigned width() const;

private:
    class Streams; // of this system

    std::unique_ptr<Streams> m_streams;
};

/// Whether the environment does not forbid colours with NO_COLOR.
bool areColoursWanted();

/// The columns that the environment states in COLUMNS, 1 to 10,000; 0 if it states none.
unsigned statedColumns();
}
