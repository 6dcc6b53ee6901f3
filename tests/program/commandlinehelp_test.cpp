#include "tools/sonavit/commandline.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using sonavit::program::readCommandLine;

namespace
{
std::string helpOf(const std::string& command)
{
    return "=== " + command + "\n" + readCommandLine({"help", command}).answer;
}

/// The pages that help.txt has, each below a line with "=== " and its command.
std::string expectedPages()
{
    std::ifstream file(std::filesystem::u8path(SONAVIT_SOURCE_DIR) / "tests/program/help.txt");
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}
}

// The author of a change to a page reads the page as a whole in help.txt, and changes it there, too.
TEST(ProgramHelp, HasThePageOfEachCommandAsWritten)
{
    std::string pages = "===\n" + readCommandLine({"help"}).answer;
    for (const char* const command :
         {"list",       "show",    "explain",    "controls", "selectors",   "graph",   "ask",
          "get-volume", "monitor", "set-volume", "mute",     "set-control", "select",  "format",
          "save",       "restore", "capture",    "find",     "refer",       "resolve", "doctor"})
        pages += helpOf(command);

    EXPECT_EQ(expectedPages(), pages);
}
