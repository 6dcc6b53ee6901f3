#include "tools/sonavit/ownernames.h"

#include "platform/coreaudio.h"
#include "tools/sonavit/windows/utf16.h"

#include <array>

namespace sonavit::program
{
namespace
{
constexpr DWORD longest = 512;
using Name = std::array<WCHAR, longest>;

void add(BOOL isKnown, const Name& name, std::vector<std::string>& names)
{
    if (isKnown != FALSE)
        names.push_back(utf8(name.data()));
}
}

/// The name of the computer in its network may be longer than the other one, which has at most 15 characters.
std::vector<std::string> ownerNames()
{
    std::vector<std::string> names;
    Name name{};
    DWORD size = longest;
    add(GetUserNameW(name.data(), &size), name, names);
    for (const COMPUTER_NAME_FORMAT format : {ComputerNamePhysicalDnsHostname, ComputerNamePhysicalNetBIOS})
    {
        size = longest;
        add(GetComputerNameExW(format, name.data(), &size), name, names);
    }
    return names;
}
}
