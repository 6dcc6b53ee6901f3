#include "tools/sonavit/interruption.h"
#include "tools/sonavit/program.h"
#include "tools/sonavit/terminal.h"

#include <iostream>

int main(int count, char** words)
{
    sonavit::prepareOutput();
    const sonavit::Interruption interruption;
    sonavit::Environment environment{std::cout, std::cerr};
    environment.isTerminal = sonavit::isOutputTerminal();
    environment.hasColours = sonavit::hasOutputColours();
    environment.width = sonavit::outputWidth();
#if !defined(_WIN32)
    environment.defaultMachine = "desktop";
#endif
    environment.pause = sonavit::Interruption::wait;
    return sonavit::run(sonavit::commandLineWords(count, words), environment);
}
