#include "tools/sonavit/output/fieldlist.h"

#include <gtest/gtest.h>

#include <sstream>

using sonavit::program::Environment;
using sonavit::program::Fields;

namespace
{
std::string shown(const Fields& fields, unsigned width, bool hasColours = false)
{
    std::ostringstream out;
    std::ostringstream err;
    Environment environment{out, err};
    environment.width = width;
    environment.hasColours = hasColours;
    sonavit::program::showFields(environment, fields);
    return out.str();
}
}

TEST(ProgramFieldList, AlignsTheValues)
{
    EXPECT_EQ("  jack   Speaker\n  state  active  now\n", shown({{"jack", "Speaker"}, {"state", "active  now"}}, 0));
}

TEST(ProgramFieldList, ContinuesAValueBelowItsBeginning)
{
    EXPECT_EQ("  not read  one two three four\n            five six\n",
              shown({{"not read", "one two three four five six"}}, 32));
}

TEST(ProgramFieldList, BreaksNoWord)
{
    const std::string id(40, 'x');

    EXPECT_EQ("  id  " + id + "\n", shown({{"id", id}}, 30));
}

TEST(ProgramFieldList, WrapsNothingWhereThereIsNoRoom)
{
    EXPECT_EQ("  not read  one two three four five six\n", shown({{"not read", "one two three four five six"}}, 31));
}

TEST(ProgramFieldList, DimsTheNames)
{
    EXPECT_EQ("  \x1B[2mid\x1B[0m  x\n", shown({{"id", "x"}}, 0, true));
}
