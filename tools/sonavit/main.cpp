#include "tools/sonavit/commandwords.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/interruption.h"
#include "tools/sonavit/output/terminal.h"
#include "tools/sonavit/ownernames.h"
#include "tools/sonavit/program.h"

#include <iostream>
#include <iterator>
#include <memory>
#include <string>

namespace
{
int runOnTerminal(const std::vector<std::string>& words)
{
    sonavit::program::Terminal terminal;
    sonavit::program::Environment environment{terminal.out(), terminal.err()};
    environment.readInput = []
    { return std::string(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()); };
    environment.ownerNames = sonavit::program::ownerNames;
    environment.isTerminal = terminal.isTerminal();
    environment.hasColours = terminal.hasColours();
    environment.width = terminal.width();
#if !defined(_WIN32)
    environment.defaultMachine = "desktop";
#endif
    environment.deferEnd = [] { return std::make_shared<sonavit::program::Interruption>(); };
    environment.pause = sonavit::program::Interruption::wait;
    return sonavit::program::run(words, environment);
}
}

int main(int count, char** words)
{
    const int code = runOnTerminal(sonavit::program::commandLineWords(count, words));
    const bool isInterrupted =
        code == sonavit::program::exitInterrupted || sonavit::program::Interruption::isOutputLost();
    return isInterrupted ? sonavit::program::Interruption::end() : code;
}
