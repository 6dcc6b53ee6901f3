// Writes the JSON schema of machine files to standard output. After a change to a table of fields:
//
//     cmake --build --preset native --target machine-schema
//     build/native/bin/machine-schema > machines/machine.schema.json
#include "simulator/machine/file/schema.h"

#include <iostream>

int main()
{
    std::cout << sim::machineSchema();
    return std::cout.flush() ? 0 : 1;
}
