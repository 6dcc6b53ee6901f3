#include "tools/sonavit/ownernames.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

namespace sonavit::program
{
namespace
{
/// The person's name comes first among what the account says about its user.
void addAccount(std::vector<std::string>& names)
{
    const passwd* const account = getpwuid(getuid());
    if (account == nullptr)
        return;
    names.emplace_back(account->pw_name);
    const std::string user = account->pw_gecos == nullptr ? "" : account->pw_gecos;
    names.push_back(user.substr(0, user.find(',')));
}
}

std::vector<std::string> ownerNames()
{
    std::vector<std::string> names;
    addAccount(names);
    std::array<char, 256> computer{};
    if (gethostname(computer.data(), computer.size() - 1) == 0)
        names.emplace_back(computer.data());
    return names;
}
}
