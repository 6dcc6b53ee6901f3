// Writing a machine as the content of a file.
#include "simulator/machine/file/fieldtables.h"
#include "simulator/machine/file/json.h"
#include "simulator/machine/file/machinefile.h"

namespace sim
{
std::string writeMachine(const Machine& machine)
{
    return printJson(fieldsOf<Machine>().write(machine));
}
}
