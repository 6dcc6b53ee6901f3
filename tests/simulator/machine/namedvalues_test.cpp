#include "simulator/machine/namedvalues.h"

#include "simulator/machine/valuetext.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace
{
using Rows = std::vector<std::pair<std::string, long>>;

/// The names of a table with the numbers that the platform's headers and machine files have.
template<class Table>
Rows rowsOf(const Table& table)
{
    Rows rows;
    for (const auto& named : table)
        rows.emplace_back(named.name, static_cast<long>(named.value));
    return rows;
}

// Microsoft's documentation of the device topology API names these interfaces; devicetopology.h has their ids.
TEST(MachineNamedValues, OfControlInterfacesAreTheirIds)
{
    const std::vector<std::pair<std::string, std::string>> ids = {
        {"IAudioAutoGainControl", "{85401FD4-6DE4-4B9D-9869-2D6753A82F3C}"},
        {"IAudioLoudness", "{7D8B1437-DD53-4350-9C1B-1EE2890BF938}"},
        {"IAudioPeakMeter", "{DD79923C-0599-45E0-B8B6-C8DF7DB6E796}"},
        {"IAudioBass", "{A2B1A1D9-4DB3-425D-A2B2-BD335CB3E2E5}"},
        {"IAudioMidrange", "{5E54B6D7-B44B-40D9-9A9E-E691D9CE6EDF}"},
        {"IAudioTreble", "{0A717812-694E-4907-B74B-BAFA5CFDCA7B}"},
        {"IAudioChannelConfig", "{BB11C46F-EC28-493C-B88A-5DB88062CE98}"},
        {"IKsFormatSupport", "{3CB4A69D-BB6F-4D2B-95B7-452D2C155DB5}"},
        {"IDeviceSpecificProperty", "{3B22BCBF-2586-4AF0-8583-205D391B807C}"}};

    std::vector<std::pair<std::string, std::string>> rows;
    for (const auto& named : sim::controlInterfaceNames)
        rows.emplace_back(named.name, sim::guidText(named.value));

    EXPECT_EQ(ids, rows);
}

TEST(MachineNamedValues, OfEndpointsAreThoseOfThePlatform)
{
    EXPECT_EQ(Rows({{"render", 0}, {"capture", 1}}), rowsOf(sim::flowNames));
    EXPECT_EQ(Rows({{"active", 1}, {"disabled", 2}, {"notPresent", 4}, {"unplugged", 8}}), rowsOf(sim::stateNames));
    EXPECT_EQ(Rows({{"console", 0}, {"multimedia", 1}, {"communications", 2}}), rowsOf(sim::roleNames));
    EXPECT_EQ(Rows({{"volume", 1}, {"mute", 2}, {"meter", 4}}), rowsOf(sim::hardwareSupportNames));
}

TEST(MachineNamedValues, OfConnectorsAreThoseOfThePlatform)
{
    EXPECT_EQ(Rows({{"in", 0}, {"out", 1}}), rowsOf(sim::directionNames));
    EXPECT_EQ(Rows({{"unknown", 0},
                    {"physicalInternal", 1},
                    {"physicalExternal", 2},
                    {"softwareIo", 3},
                    {"softwareFixed", 4},
                    {"network", 5}}),
              rowsOf(sim::connectorTypeNames));
}

TEST(MachineNamedValues, OfJacksAreThoseOfThePlatform)
{
    EXPECT_EQ(Rows({{"unknown", 0},
                    {"3.5mm jack", 1},
                    {"quarter inch jack", 2},
                    {"ATAPI internal", 3},
                    {"RCA", 4},
                    {"optical", 5},
                    {"other digital", 6},
                    {"other analog", 7},
                    {"multichannel DIN", 8},
                    {"XLR", 9},
                    {"RJ11 modem", 10},
                    {"combination", 11}}),
              rowsOf(sim::jackConnectionNames));
    EXPECT_EQ(Rows({{"rear", 1},
                    {"front", 2},
                    {"left", 3},
                    {"right", 4},
                    {"top", 5},
                    {"bottom", 6},
                    {"rear panel", 7},
                    {"riser", 8},
                    {"inside mobile lid", 9},
                    {"drive bay", 10},
                    {"HDMI", 11},
                    {"outside mobile lid", 12},
                    {"ATAPI", 13},
                    {"not applicable", 14}}),
              rowsOf(sim::geometricLocationNames));
    EXPECT_EQ(Rows({{"primary box", 0}, {"internal", 1}, {"separate", 2}, {"other", 3}}),
              rowsOf(sim::generalLocationNames));
    EXPECT_EQ(Rows({{"jack", 0}, {"integrated device", 1}, {"both", 2}, {"unknown", 3}}),
              rowsOf(sim::portConnectionNames));
}

TEST(MachineNamedValues, OfPropertyTagsAreThoseOfThePlatform)
{
    EXPECT_EQ(Rows({{"VT_I2", 2},
                    {"VT_I4", 3},
                    {"VT_BOOL", 11},
                    {"VT_I1", 16},
                    {"VT_UI1", 17},
                    {"VT_UI2", 18},
                    {"VT_UI4", 19},
                    {"VT_UI8", 21},
                    {"VT_INT", 22},
                    {"VT_UINT", 23},
                    {"VT_I8", 20},
                    {"VT_FILETIME", 64}}),
              rowsOf(sim::numberTagNames));
}
}
