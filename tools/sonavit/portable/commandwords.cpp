#include "tools/sonavit/commandwords.h"

namespace sonavit::program
{
std::vector<std::string> commandLineWords(int count, char** words)
{
    return {words + (count > 0 ? 1 : 0), words + count};
}
}
