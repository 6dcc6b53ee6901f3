#include "tests/faults/engine/options.h"

#include <algorithm>
#include <stdexcept>

namespace faults
{
namespace
{
unsigned numberIn(const std::string& option, const std::string& text)
{
    const bool isNumber = !text.empty() && text.size() < 8 && text.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber || std::stoul(text) == 0)
        throw std::invalid_argument(option + " needs a number above 0, not \"" + text + "\"");
    return static_cast<unsigned>(std::stoul(text));
}
}

const char* const usage =
    "usage: sonavit-faults [PART...] [--machine NAME] [--operation NAME] [--call K --mode MODE]\n"
    "                      [--processes N] [--patience SECONDS] [--list | --help]\n"
    "A '*' in a NAME stands for any text. K and MODE are those of a finding; two calls that fail\n"
    "together are K,K and MODE,MODE.\n";

Options parse(const std::vector<std::string>& arguments)
{
    Options options;
    std::string call;
    std::string mode;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& argument = arguments[i];
        if (argument == "--list" || argument == "--help")
        {
            (argument == "--list" ? options.list : options.help) = true;
            continue;
        }
        if (argument.compare(0, 2, "--") != 0)
        {
            options.parts.push_back(argument);
            continue;
        }
        if (++i == arguments.size())
            throw std::invalid_argument(argument + " needs a value");
        if (argument == "--machine")
            options.machine = arguments[i];
        else if (argument == "--operation")
            options.operation = arguments[i];
        else if (argument == "--call")
            call = arguments[i];
        else if (argument == "--mode")
            mode = arguments[i];
        else if (argument == "--processes")
            options.processes = numberIn(argument, arguments[i]);
        else if (argument == "--patience")
            options.patience = std::chrono::seconds(numberIn(argument, arguments[i]));
        else
            throw std::invalid_argument("there is no option " + argument);
    }
    if (call.empty() != mode.empty())
        throw std::invalid_argument("--call and --mode belong together");
    if (!call.empty())
        options.run = call + ":" + mode;
    return options;
}
}
