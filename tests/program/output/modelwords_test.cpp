#include "tools/sonavit/output/modelwords.h"

#include "simulator/machine/nodetypes.h"
#include "sonavit/nodekind.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace sonavit;
using namespace sonavit::program;

namespace
{
Guid guid(const GUID& platformGuid)
{
    Guid result;
    std::memcpy(static_cast<void*>(&result), &platformGuid, sizeof result);
    return result;
}
}

TEST(ProgramKindWords, NameTypes)
{
    EXPECT_EQ("S/PDIF", kindWords(guidOf(NodeKind::spdif)));
    EXPECT_EQ("-", kindWords(std::nullopt));
}

TEST(ProgramKindWords, AreThereForEachTypeThatHasAName)
{
    for (const auto& named : sim::nodeTypeNames)
        EXPECT_NE("Other", kindWords(guid(named.value))) << named.name;
    EXPECT_EQ("Other", kindWords(Guid{1, 2, 3, {}}));
}

TEST(ProgramLevelWords, HaveADashForWhatCannotBeRead)
{
    EXPECT_EQ("-", percentWords(std::nullopt));
    EXPECT_EQ("-", decibelWords(std::nullopt));
    EXPECT_EQ("0%", percentWords(Percent(0)));
    EXPECT_EQ("-18.00 dB", decibelWords(Decibels(-18)));
    EXPECT_EQ("-", rangeWords(std::nullopt));
}
