#include "tests/conformity/host.h"

namespace conformity
{
std::string hostName()
{
    return "this system";
}

std::optional<bool> isAdministrator()
{
    return std::nullopt;
}
}
