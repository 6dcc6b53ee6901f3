#include "tests/conformity/account.h"

namespace conformity
{
std::optional<bool> isAdministrator()
{
    return std::nullopt;
}
}
