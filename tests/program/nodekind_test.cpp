#include "tools/sonavit/nodekind.h"

#include <gtest/gtest.h>

using namespace sonavit::program;

TEST(ProgramNodeKind, KnowsDigitalJacks)
{
    for (const GUID& type : {KSNODETYPE_SPDIF_INTERFACE, KSNODETYPE_HDMI_INTERFACE, KSNODETYPE_DISPLAYPORT_INTERFACE,
                             KSNODETYPE_DIGITAL_AUDIO_INTERFACE, KSNODETYPE_1394_DA_STREAM})
        EXPECT_TRUE(isDigitalJack(type)) << *typeText(type);
    EXPECT_FALSE(isDigitalJack(KSNODETYPE_LINE_CONNECTOR));
    EXPECT_FALSE(isDigitalJack(KSNODETYPE_SPEAKER));
}

TEST(ProgramNodeKind, NamesTypesInJson)
{
    EXPECT_EQ("spdif", kindKey(KSNODETYPE_SPDIF_INTERFACE));
    EXPECT_EQ("other", kindKey(GUID{1, 2, 3, {}}));
    EXPECT_EQ(std::nullopt, kindKey(std::nullopt));
}
