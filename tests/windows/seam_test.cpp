// Compares the portable declarations of the platform with the SDK's headers, fact by fact.

#include "platform/windows/defineidentifiers.h"

#include "tests/windows/seam_table.h"

#include <gtest/gtest.h>

// What depends on the size of a pointer, for builds whose programs cannot be run. The portable headers assert the same.
static_assert(sizeof(PROPVARIANT) == 8 + 2 * sizeof(void*), "16 bytes on 32-bit Windows, 24 on 64-bit Windows");
static_assert(offsetof(PROPVARIANT, ulVal) == 8, "the value follows four words");
static_assert(sizeof(BLOB) == 2 * sizeof(void*) && offsetof(BLOB, pBlobData) == sizeof(void*), "a size and a pointer");
static_assert(sizeof(FILTER_INFO) == 256 + sizeof(void*), "128 units and a pointer");
static_assert(sizeof(DWORD_PTR) == sizeof(void*) && sizeof(LPARAM) == sizeof(void*), "integers of a pointer's size");
static_assert(sizeof(PROPERTYKEY) == 20 && sizeof(AUDIO_VOLUME_NOTIFICATION_DATA) == 32, "the same everywhere");
static_assert(sizeof(WAVEFORMATEX) == 18 && sizeof(WAVEFORMATEXTENSIBLE) == 40, "packed");

seam::Table seam::sdkTable()
{
    Table table;
#include "tests/windows/seam_contents.inc"
    return table;
}

namespace
{

class Seam : public testing::Test
{
protected:
    static void expectSame(const seam::Facts& sdk, const seam::Facts& portable)
    {
        ASSERT_FALSE(sdk.empty());
        ASSERT_EQ(sdk.size(), portable.size());
        for (const auto& [name, fact] : sdk)
            EXPECT_EQ(fact, portable.at(name)) << name;
    }

    const seam::Table sdk = seam::sdkTable();
    const seam::Table portable = seam::portableTable();
};

/// Operations of an interface that seam_contents.inc lists, those of its bases included. IUnknown names itself as base.
int listedOperations(const seam::Table& table, const std::string& name)
{
    const auto found = table.slots.find(name); // absent for interfaces without operations of their own
    const int own = found == table.slots.end() ? 0 : static_cast<int>(found->second.size());
    const std::string& base = table.bases.at(name);
    return base == name ? own : own + listedOperations(table, base);
}

using SeamInterfaces = Seam;
using SeamSignatures = Seam;
using SeamLayouts = Seam;
using SeamIdentifiers = Seam;
using SeamConstants = Seam;

}

TEST_F(SeamInterfaces, TheMeasureFindsPlacesThatAreKnown)
{
    for (const seam::Table* table : {&sdk, &portable})
    {
        EXPECT_EQ(0, table->slots.at("IUnknown").at("QueryInterface"));
        EXPECT_EQ(2, table->slots.at("IUnknown").at("Release"));
        EXPECT_EQ(3, table->slots.at("IAudioMute").at("SetMute"));
        EXPECT_EQ(4, table->slots.at("IAudioMute").at("GetMute"));
        EXPECT_EQ(20, table->slots.at("IAudioEndpointVolume").at("GetVolumeRange"));
    }
}

TEST_F(SeamInterfaces, EveryOperationHasThePlaceThatTheSdkGivesIt)
{
    ASSERT_EQ(sdk.slots.size(), portable.slots.size());
    for (const auto& [interfaceName, operations] : sdk.slots)
    {
        for (const auto& [operation, slot] : operations)
            EXPECT_EQ(slot, portable.slots.at(interfaceName).at(operation)) << interfaceName << "::" << operation;
    }
}

TEST_F(SeamInterfaces, EveryOperationOfEitherSideIsListed)
{
    for (const seam::Table* table : {&sdk, &portable})
    {
        for (const auto& [name, operations] : table->operations)
            EXPECT_EQ(operations, listedOperations(*table, name)) << name;
    }
}

TEST_F(SeamSignatures, OperationsAndFunctionsTakeAndReturnTheSame)
{
    expectSame(sdk.signatures, portable.signatures);
}

TEST_F(SeamSignatures, TheMeasureTellsTypesApart)
{
    EXPECT_EQ("int32(enum32,unsigned32,**object,)", sdk.signatures.at("IMMDeviceEnumerator::EnumAudioEndpoints"));
    EXPECT_EQ("int32(float32,*kobject,)", portable.signatures.at("IPerChannelDbLevel::SetLevelUniform"));
}

TEST_F(SeamLayouts, TypesAndMembersHaveTheSameSizesAndPlaces)
{
    expectSame(sdk.layouts, portable.layouts);
}

TEST_F(SeamIdentifiers, EveryByteIsTheSame)
{
    expectSame(sdk.identifiers, portable.identifiers);
}

TEST_F(SeamConstants, NumbersAreTheSame)
{
    expectSame(sdk.constants, portable.constants);
}

TEST(SeamIdentifierComparison, WorksForIdentifiersAndKeysOnTheSdksTypes)
{
    EXPECT_TRUE(KSNODETYPE_SPEAKER == KSNODETYPE_SPEAKER);
    EXPECT_TRUE(KSNODETYPE_SPEAKER != KSNODETYPE_HEADPHONES);
    EXPECT_TRUE(PKEY_AudioEndpoint_GUID == PKEY_AudioEndpoint_GUID);
    EXPECT_TRUE(PKEY_AudioEndpoint_GUID != PKEY_AudioEndpoint_FormFactor);
}
