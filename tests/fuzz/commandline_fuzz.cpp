/// Any command line ends with exit code 0 to 3. Where it fails, the program says so in one sentence; with --json it
/// prints JSON, whatever happens. The machine has one card; nothing outside the program is read or written.
#include "simulator/machine/builder/machinebuilder.h"
#include "tests/fuzz/support/check.h"
#include "tools/sonavit/commandline.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/program.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace
{
using fuzz::check;

constexpr std::size_t mostWords = 8;

sim::Machine smallMachine()
{
    sim::MachineBuilder builder("small");
    sim::CardBuilder card = builder.card("Analog Audio");
    card.speaker("Speakers").isDefault().level(-18.0f).hardwareVolume({-65.25f, 0.0f, 0.75f, -6.0f}).hardwareMute();
    card.headphones("Headphones").unplugged().level(-30.0f);
    card.microphone("Microphone").muted();
    return builder.build();
}

// --- The command line: words that mean something, and others ---------------------------------------------------------

constexpr std::array<const char*, 21> verbs = {
    "list",       "show",       "explain", "controls",    "selectors", "graph",   "ask",
    "get-volume", "set-volume", "mute",    "set-control", "select",    "save",    "restore",
    "capture",    "find",       "refer",   "resolve",     "doctor",    "monitor", "format"};

constexpr std::array<const char*, 54> words = {"Speakers",
                                               "Headphones",
                                               "Microphone",
                                               "Analog Audio",
                                               "@DEFAULT_OUTPUT@",
                                               "@DEFAULT_INPUT@",
                                               "on",
                                               "off",
                                               "toggle",
                                               "50%",
                                               "-12.5dB",
                                               "5%+",
                                               "3dB-",
                                               "0",
                                               "1",
                                               "24/48000/2",
                                               "99999999999",
                                               "-1",
                                               "nan",
                                               "1e400",
                                               "--json",
                                               "--machine",
                                               "--account",
                                               "ordinary",
                                               "administrator",
                                               "--latency",
                                               "none",
                                               "--log",
                                               "debug",
                                               "fatal",
                                               "--via",
                                               "layer",
                                               "model",
                                               "--active",
                                               "--outputs",
                                               "--inputs",
                                               "--card",
                                               "--short",
                                               "--output",
                                               "-o",
                                               "--endpoint",
                                               "--only",
                                               "--for",
                                               "--anonymous",
                                               "--channel",
                                               "--set",
                                               "--hold",
                                               "--help",
                                               "--version",
                                               "--",
                                               "-",
                                               "",
                                               "added,volume",
                                               "snv1:AQEA1b7MMQ"};

/// A word that names no file outside the folder, and cannot be taken for one: commands write files.
std::string freeWord(FuzzedDataProvider& input)
{
    std::string word = input.ConsumeRandomLengthString(40);
    for (const char separator : {'\0', '/', '\\'})
        std::replace(word.begin(), word.end(), separator, '_');
    return word;
}

std::string nextWord(FuzzedDataProvider& input)
{
    const auto number = input.ConsumeIntegral<std::uint8_t>();
    if (number < 200)
        return words[number % words.size()];
    return number < 220 ? verbs[number % verbs.size()] : freeWord(input);
}

std::vector<std::string> commandLineOf(FuzzedDataProvider& input)
{
    std::vector<std::string> line;
    const auto verb = input.ConsumeIntegral<std::uint8_t>();
    if (verb < 250)
        line.emplace_back(verbs[verb % verbs.size()]);
    while (line.size() < mostWords && input.remaining_bytes() > 0)
        line.push_back(nextWord(input));
    return line;
}

/// What the program understands; no value if it refuses the command line.
std::optional<sonavit::program::Arguments> argumentsOf(const std::vector<std::string>& line)
{
    try
    {
        return sonavit::program::readCommandLine(line).arguments;
    }
    catch (const sonavit::program::UsageError&)
    {
        return std::nullopt;
    }
}

/// What a command writes to a file, other tests look at.
bool usesAFile(const sonavit::program::Arguments& arguments)
{
    return !arguments.outputFile.empty() || !arguments.file.empty();
}

// --- The answer -----------------------------------------------------------------------------------------------------

struct Answer
{
    int code = -1;
    std::string out;
    std::string err;
};

/// The user ends a monitor at once, and lets everything else come to its end.
Answer run(const std::vector<std::string>& line, bool isMonitor)
{
    std::ostringstream out;
    std::ostringstream err;
    sonavit::program::Environment environment{out, err};
    environment.pause = [isMonitor](std::chrono::milliseconds) { return isMonitor; };
    environment.defaultMachine = "small";
    environment.findMachine = [](const std::string&) { return smallMachine(); };
    Answer answer;
    answer.code = sonavit::program::run(line, environment);
    answer.out = out.str();
    answer.err = err.str();
    return answer;
}

/// The monitor prints one object a line, everything else one document.
bool isJson(const std::string& text, bool isMonitor)
{
    if (nlohmann::json::accept(text))
        return true;
    if (!isMonitor)
        return false;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        if (!nlohmann::json::accept(line))
            return false;
    }
    return true;
}

/// These answer in full and have an exit code that says more.
bool hasAnswered(const sonavit::program::Arguments& arguments, const Answer& answer)
{
    using sonavit::program::Verb;
    const bool canAnswer =
        arguments.verb == Verb::doctor || arguments.verb == Verb::restore || arguments.verb == Verb::ask;
    return canAnswer && answer.err.find("sonavit: ") == std::string::npos && !answer.out.empty();
}

/// The last line of standard error: "sonavit: there is no endpoint ...".
void checkSentence(const std::string& err)
{
    check(!err.empty() && err.back() == '\n', "a failing command ends its sentence with the line");
    const std::string lines = err.substr(0, err.size() - 1);
    const std::string last = lines.substr(lines.rfind('\n') + 1);
    check(last.compare(0, 9, "sonavit: ") == 0 && fuzz::isOneLine(last), "a failing command says one sentence");
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const std::vector<std::string> line = commandLineOf(input);
    const std::optional<sonavit::program::Arguments> arguments = argumentsOf(line);
    if (arguments && usesAFile(*arguments))
        return 0;

    const bool isMonitor = arguments && arguments->verb == sonavit::program::Verb::monitor;
    const Answer answer = run(line, isMonitor);

    check(answer.code >= 0 && answer.code <= 3, "the exit code is 0, 1, 2 or 3");
    check((answer.code == 2) || arguments.has_value(), "what cannot be understood is a usage error");
    check(answer.code != 0 || answer.err.find("sonavit: ") == std::string::npos, "success has no sentence");
    if (answer.code != 0 && !(arguments && hasAnswered(*arguments, answer)))
        checkSentence(answer.err);
    if (arguments ? arguments->isJson : sonavit::program::asksForJson(line)) // "--machine --json" names a machine
    {
        check(isJson(answer.out, isMonitor), "with --json the answer is JSON");
        check(answer.code == 0 || !answer.out.empty(), "with --json an error is JSON");
    }
    return 0;
}
