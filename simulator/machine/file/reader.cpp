// Reading a machine from the content of a file.
#include "simulator/machine/file/check.h"
#include "simulator/machine/file/cursor.h"
#include "simulator/machine/file/fieldtables.h"
#include "simulator/machine/file/json.h"
#include "simulator/machine/file/machinefile.h"

namespace sim
{
Machine readMachine(const std::string& text, const std::string& nameForMessages)
{
    const JsonValue json = parseJson(text, nameForMessages);
    Machine result = fieldsOf<Machine>().read(JsonCursor(json, nameForMessages));
    const std::vector<MachineProblem> problems = checkMachine(result);
    if (problems.empty())
        return result;

    const MachineProblem& first = problems.front();
    const std::string others = problems.size() == 1 ? "" : " (and " + std::to_string(problems.size() - 1) + " more)";
    throw MachineFileError(nameForMessages, json.nearest(first.place).line, 0, first.place, first.expected,
                           first.found + others);
}
}
