/// All that an operation of the library does that others can see, as lines of text.
#pragma once

#include "qor/logging.h"
#include "simulator/simulation.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace support
{
/// Collects the calls that reach a machine, the messages and the traced functions, in the order in which they begin,
/// and what the operation notes itself. Line numbers of the library's sources are left out.
///
///     enter soundcard SoundCard::enumerateSystemSoundDevices
///     call IMMDeviceEnumerator::EnumAudioEndpoints(eCapture, 15) -> 0x00000000
///     log 2 soundcard a message of priority 2
///     = a note
///
/// One transcript lives at a time; it is the log's sink meanwhile. All lines come from one thread.
class Transcript
{
public:
    /// Collects nothing yet.
    explicit Transcript(sim::Simulation& simulation);
    /// Restores the default sink and the process-wide minimum of the log.
    ~Transcript();
    Transcript(const Transcript&) = delete;
    Transcript& operator=(const Transcript&) = delete;

    /// Runs @p action when the transcript begins.
    void atBegin(std::function<void()> action) { m_atBegin = std::move(action); }

    /// From here on everything is collected. What went before only prepares the operation.
    void begin();

    void note(const std::string& text);
    /// Notes what is referenced at the moment: references by interface, blocks of task memory, clients.
    void noteCensus();
    /// Makes noteCensus() note nothing. A census takes the longer the more the process has left with machines.
    void leaveOutCensus() { m_hasCensus = false; }

    /// All lines, each with its end.
    std::string text() const;

private:
    struct Line
    {
        std::size_t callsBefore;
        std::string text;
    };

    void add(const std::string& text);
    void add(const qor::LogRecord& record);

    sim::Simulation& m_simulation;
    const qor::LOGGER_PRIORITY m_oldMinimum;
    std::function<void()> m_atBegin;
    bool m_collects = false;
    bool m_hasCensus = true;
    std::vector<Line> m_lines;
};

/// The platform's operations that a transcript calls, in their order.
std::vector<std::string> callsIn(const std::string& transcript);

/// What a table holds of a transcript.
struct Fingerprint
{
    std::uint64_t hash = 14695981039346656037u; ///< like FNV-1a, with words of eight bytes
    std::size_t lines = 0;

    /// Adds a transcript to those before it. Bytes count in the order of a little-endian processor.
    void add(const std::string& text);
};

/// "00112233aabbccdd 42": hash and number of lines.
std::string printed(const Fingerprint& fingerprint);
}
