#pragma once

#include "qor/logging.h"
#include "simulator/machine/deviceformat.h"
#include "simulator/machine/machine.h"
#include "sonavit/levelchange.h"

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace sonavit::program
{
enum class Verb
{
    list,
    show,
    explain,
    controls,
    selectors,
    graph,
    ask,
    getVolume,
    setVolume,
    mute,
    setControl,
    select,
    save,
    restore,
    capture,
    find,
    refer,
    resolve,
    doctor,
    monitor,
    format
};

enum class MuteChange
{
    on,
    off,
    toggle
};

/// What answers the questions of a command.
enum class Via
{
    layer, ///< the client layer
    model  ///< the object model
};

/// Kinds of events, for `monitor --only`.
enum class EventKind
{
    added,
    removed,
    state,
    volume,
    defaults,
    name,
    format,
    hardware,
    service,
    other
};

/// What the user asks for.
struct Arguments
{
    Verb verb = Verb::list;
    std::optional<std::string> machine;
    std::optional<sim::Account> account;       ///< of a simulated machine; empty: the one in its description
    std::optional<sim::LatencyPreset> latency; ///< of a simulated machine; empty: the one in its description
    bool isJson = false;
    std::optional<qor::LOGGER_PRIORITY> log; ///< lowest priority to print; none to print no records

    Via via = Via::layer;

    std::string endpoint;   ///< as the user names it; for `graph` the one whose path is highlighted, or empty;
                            ///< for `doctor` empty for all
    std::string card;       ///< as the user names it; empty for all
    std::string instanceId; ///< for `ask`
    std::string outputFile; ///< for `graph` and `capture`; empty for standard output

    // For `list`.
    bool isOnlyActive = false;
    bool isOnlyOutputs = false;
    bool isOnlyInputs = false;
    bool isShort = false;

    bool isOnlyPath = false;  ///< for `graph`: nothing but the path of `endpoint`
    bool isAnonymous = false; ///< for `capture`

    std::optional<LevelChange> level; ///< for `set-volume`, on the channel that the user names
    MuteChange mute = MuteChange::toggle;
    std::string control;                                                  ///< for `set-control`, as the user names it
    std::variant<LevelChange, MuteChange> controlChange = MuteChange::on; ///< for `set-control`: a level, on or off
    std::string selector;                                                 ///< for `select`, as the user names it
    std::string input;                                                    ///< for `select`, as the user names it
    std::string file;      ///< for `save` and `restore`; empty for standard output and input
    std::string id;        ///< for `find`
    std::string reference; ///< for `resolve`

    std::vector<std::string> endpoints;                ///< for `monitor`, as the user names them; empty for all
    std::set<EventKind> eventKinds;                    ///< for `monitor`; empty for all
    std::optional<std::chrono::milliseconds> duration; ///< for `monitor`; none for no end
    std::optional<sim::DeviceFormat> format;           ///< for `format`; none to print the present one
    std::chrono::milliseconds hold{5000};              ///< for `format`
};

/// A command line that has been read.
struct CommandLine
{
    Arguments arguments;
    std::string answer; ///< help or version; if it is not empty, it is printed and nothing else is done
    bool isVersion = false;
};

/// Reads the command line after the program's name. Throws UsageError.
CommandLine readCommandLine(const std::vector<std::string>& words);

/// Whether @p words ask for JSON, as far as they can be understood: one --json is enough in a line that makes no sense.
bool asksForJson(const std::vector<std::string>& words);
}
