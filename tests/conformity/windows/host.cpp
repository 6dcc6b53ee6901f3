#include "tests/conformity/host.h"

#include <windows.h>

namespace conformity
{
namespace
{
template<class Function>
Function functionOfNtdll(const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

/// The version that Windows tells every program, whatever its manifest says.
std::string windowsVersion()
{
    using GetVersionFunction = LONG(NTAPI*)(OSVERSIONINFOW*);
    const auto getVersion = functionOfNtdll<GetVersionFunction>("RtlGetVersion");
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (getVersion == nullptr || getVersion(&version) != 0)
        return "Windows";
    return "Windows " + std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
           std::to_string(version.dwBuildNumber);
}

/// Empty on Windows itself.
std::string wineVersion()
{
    using GetWineVersion = const char*(CDECL*)();
    const auto getVersion = functionOfNtdll<GetWineVersion>("wine_get_version");
    return getVersion == nullptr ? std::string() : std::string(" as Wine ") + getVersion() + " presents it";
}
}

std::string hostName()
{
    const std::optional<bool> isKnown = isAdministrator();
    const std::string rights = !isKnown ? "" : *isKnown ? ", run as an administrator" : ", run as an ordinary user";
    return windowsVersion() + wineVersion() + rights;
}

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
