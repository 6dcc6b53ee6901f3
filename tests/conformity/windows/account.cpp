#include "tests/conformity/account.h"

#include <windows.h>

namespace conformity
{
std::optional<bool> isAdministrator()
{
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    PSID group = nullptr;
    if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0,
                                  &group))
        return std::nullopt;
    BOOL isMember = FALSE;
    const bool isKnown = CheckTokenMembership(nullptr, group, &isMember) != FALSE;
    FreeSid(group);
    return isKnown ? std::optional<bool>(isMember != FALSE) : std::nullopt;
}
}
