#include "tests/faults/library/operation.h"

namespace faults::library
{
std::vector<Operation> operations()
{
    std::vector<Operation> all;
    for (const auto& make : {cardOperations, eventOperations, listOperations, deviceOperations, topologyOperations,
                             partOperations, volumeOperations})
    {
        for (Operation& operation : make())
            all.push_back(std::move(operation));
    }
    return all;
}
}
