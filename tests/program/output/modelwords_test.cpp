#include "tools/sonavit/output/modelwords.h"

#include "simulator/machine/nodetypes.h"

#include <gtest/gtest.h>

using namespace sonavit::program;

TEST(ProgramKindWords, NameTypes)
{
    EXPECT_EQ("S/PDIF", kindWords(KSNODETYPE_SPDIF_INTERFACE));
    EXPECT_EQ("-", kindWords(std::nullopt));
}

TEST(ProgramKindWords, AreThereForEachTypeThatHasAName)
{
    for (const auto& named : sim::nodeTypeNames)
        EXPECT_NE("Other", kindWords(named.value)) << named.name;
    EXPECT_EQ("Other", kindWords(GUID{1, 2, 3, {}}));
}
