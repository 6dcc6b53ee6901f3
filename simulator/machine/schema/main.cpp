// Writes the JSON schema of machine files to a file. After a change to a table of fields:
//
//     cmake --build --preset native --target machine-schema
//     build/native/bin/machine-schema machines/machine.schema.json
#include "simulator/machine/file/schema.h"

#include <fstream>

int main(int count, char** arguments)
{
    if (count != 2)
        return 2;
    std::ofstream file(arguments[1], std::ios::binary);
    file << sim::machineSchema();
    return file.flush() ? 0 : 1;
}
