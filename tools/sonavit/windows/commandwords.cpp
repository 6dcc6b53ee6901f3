#include "tools/sonavit/commandwords.h"

#include "platform/coreaudio.h"
#include "tools/sonavit/windows/utf16.h"

#include <shellapi.h>

namespace sonavit::program
{
/// The words that main() receives are in the system's code page, which does not have all characters.
std::vector<std::string> commandLineWords(int, char**)
{
    int count = 0;
    LPWSTR* const wideWords = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; wideWords != nullptr && i < count; ++i)
        result.push_back(utf8(wideWords[i]));
    LocalFree(wideWords);
    return result;
}
}
