/// A process that works on a job.
#pragma once

#include "tests/faults/engine/worker.h"

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

namespace faults
{
/// Begins with the constructor. It must have ended, or be killed, before the destructor.
class Process
{
public:
    Process(const Job& job, const Assignment& assignment);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// To wait for.
    int pipe() const { return m_pipe; }
    /// Reads what is there. @return false if the process has closed its end
    bool read();
    /// The next complete line.
    std::optional<std::string> line();
    /// For how long nothing has come.
    std::chrono::milliseconds silence() const;

    void kill();
    /// Waits for the end. @return how it ended, for people: "exit 1", "signal 6"; empty if it ended well
    std::string end();
    /// What the process wrote to its standard error: the lines that say most, at most a few.
    std::string errors() const;

private:
    pid_t m_process = -1;
    int m_pipe = -1;
    int m_errors = -1;
    std::string m_buffer;
    std::chrono::steady_clock::time_point m_heard;
};
}
