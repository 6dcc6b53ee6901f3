#include "tools/sonavit/commandwords.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/interruption.h"
#include "tools/sonavit/output/terminal.h"
#include "tools/sonavit/program.h"

#include <memory>

namespace
{
int runOnTerminal(const std::vector<std::string>& words)
{
    sonavit::Terminal terminal;
    sonavit::Environment environment{terminal.out(), terminal.err()};
    environment.isTerminal = terminal.isTerminal();
    environment.hasColours = terminal.hasColours();
    environment.width = terminal.width();
#if !defined(_WIN32)
    environment.defaultMachine = "desktop";
#endif
    environment.deferEnd = [] { return std::make_shared<sonavit::Interruption>(); };
    environment.pause = sonavit::Interruption::wait;
    return sonavit::run(words, environment);
}
}

int main(int count, char** words)
{
    const int code = runOnTerminal(sonavit::commandLineWords(count, words));
    const bool isInterrupted = code == sonavit::exitInterrupted || sonavit::Interruption::isOutputLost();
    return isInterrupted ? sonavit::Interruption::end() : code;
}
