#include "simulator/violation.h"

#include <ostream>

namespace sim
{
namespace
{
const char* rule(Violation::Kind kind)
{
    switch (kind)
    {
    case Violation::Kind::registration:
        return "a callback must not register a client";
    case Violation::Kind::unregistration:
        return "a callback must not unregister a client";
    case Violation::Kind::lastRelease:
        return "a callback must not release the last reference on an object";
    case Violation::Kind::wait:
        return "a callback must not wait: this call waits for it";
    }
    return "";
}
}

std::string Violation::describe() const
{
    return callback + ": " + rule(kind) + ": " + call + ", journal entry " + std::to_string(place);
}

std::ostream& operator<<(std::ostream& stream, const Violation& violation)
{
    return stream << violation.describe();
}
}
