#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace support
{
/// How to start the program.
struct ProgramStart
{
    std::vector<std::string> words;
    bool isOnTerminal = false;                      ///< standard output is a pseudo-terminal instead of a pipe
    unsigned short columns = 0;                     ///< of the terminal; 0 if it does not know
    std::map<std::string, std::string> environment; ///< added to this process's, without COLUMNS, NO_COLOR and TERM
    std::vector<int> ignoredSignals;
};

/// The program as a process of its own. The destructor kills it if it still runs.
class ProgramProcess
{
public:
    explicit ProgramProcess(const ProgramStart& start);
    ~ProgramProcess();
    ProgramProcess(const ProgramProcess&) = delete;
    ProgramProcess& operator=(const ProgramProcess&) = delete;

    /// Reads standard output or standard error until @p text has appeared, or to the end.
    /// @return whether @p text has appeared
    bool outputShows(const std::string& text);
    bool errorsShow(const std::string& text);

    void send(int signal);
    void closeOutput();

    /// Reads both streams to their ends and waits for the end of the process.
    /// @return its exit code, or minus the signal that ended it
    int end();

    /// What was read so far; line ends are "\n", on a terminal too.
    std::string output() const;
    std::string errors() const;

private:
    struct Stream
    {
        int descriptor = -1;
        std::string text;
    };

    static void close(Stream& stream);
    static void read(Stream& stream);
    bool readMore();
    bool readUntil(const Stream& stream, const std::string& text);

    pid_t m_process = -1;
    Stream m_output;
    Stream m_errors;
};
}
