/// What the program shows on a console of Windows.
#include "tests/program/windows/pseudoconsole.h"
#include "tools/sonavit/windows/utf16.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::Not;

namespace
{
std::wstring programWith(const std::string& words)
{
    return sonavit::program::utf16("\"" SONAVIT_PROGRAM_PATH "\" " + words);
}
}

TEST(ProgramConsole, ShowsCharactersThatAreNotASCII)
{
    support::PseudoConsole console(programWith("--machine desktop list"), 100);

    EXPECT_EQ(0u, console.end());
    EXPECT_THAT(console.screen(), HasSubstr("\xE2\x94\x9C\xE2\x94\x80 *m Speakers"));
    EXPECT_THAT(console.screen(), Not(HasSubstr("\xEF\xBF\xBD")));
}

TEST(ProgramConsole, ShowsNoEscapeSequenceAsText)
{
    support::PseudoConsole console(programWith("--machine desktop list"), 80);

    EXPECT_EQ(0u, console.end());
    EXPECT_THAT(console.screen(), HasSubstr("3 cards, 10 endpoints"));
    EXPECT_THAT(console.screen(), Not(HasSubstr("[0m")));
    EXPECT_THAT(console.screen(), Not(HasSubstr("[1m")));
}
