#include "simulator/machine/nodetypes.h"

#include <gtest/gtest.h>

TEST(MachineNodeTypes, AreReadAsTheyAreWritten)
{
    for (const auto& named : sim::nodeTypeNames)
        EXPECT_EQ(named.value, sim::nodeTypeFromText(sim::nodeTypeText(named.value))) << named.name;
}

TEST(MachineNodeTypes, AreWrittenAsANameOrAsAGuid)
{
    const GUID other = {0x12345678, 0x9ABC, 0xDEF0, {1, 2, 3, 4, 5, 6, 7, 8}};

    EXPECT_EQ("speaker", sim::nodeTypeText(KSNODETYPE_SPEAKER));
    EXPECT_EQ("{12345678-9ABC-DEF0-0102-030405060708}", sim::nodeTypeText(other));
    EXPECT_EQ(other, sim::nodeTypeFromText("{12345678-9ABC-DEF0-0102-030405060708}"));
    EXPECT_EQ(std::nullopt, sim::nodeTypeFromText("loudspeaker"));
}

TEST(MachineNodeTypes, KeepTheOlderNameOfASelectorForFilesThatUseIt)
{
    EXPECT_EQ(KSNODETYPE_MUX, sim::nodeTypeFromText("multiplexer"));
    EXPECT_EQ("selector", sim::nodeTypeText(KSNODETYPE_MUX));
}
