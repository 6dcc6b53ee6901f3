/// The log records that are documented for failing calls of the platform.
#pragma once

#include "tests/faults/engine/run.h"

#include <string>
#include <vector>

namespace faults::library
{
/// A call that fails in an operation leaves a record.
struct Row
{
    const char* operation; ///< of the object model; '*' stands for any text, here and in `call`
    const char* call;      ///< "IMMDevice::Activate(IDeviceTopology*"
    Mode mode;
    int priority;
    const char* channel;
    const char* text;       ///< how the record begins
    const char* behind;     ///< what is somewhere behind that: the code
    bool isOfValue = false; ///< a value, or a neighbour, that is not there leaves the same record without any failure
};

/// The priority of a row whose call leaves no record, whatever the rows behind it say.
constexpr int noRecord = 0;

const std::vector<Row>& rows();

/// What is wrong with the log of a run: none of the rows for its call is kept. A call that fails anyway leaves no
/// further record, and neither does one without a row.
std::vector<Finding> judgeLog(const std::string& operation, const Record& clean, const Record& run);
}
