#include "tests/simulator/propertystoretest.h"

#include <cstring>

namespace
{
using bench::blobOf;
using bench::foreignKey;
using bench::Held;
using bench::poison;
using bench::Variant;
using testing::ElementsAre;
namespace keys = sim::keys;

using SimulatedPropertyStoreRead = bench::PropertyStoreTest;
using SimulatedPropertyStoreWrite = bench::PropertyStoreTest;

TEST_F(SimulatedPropertyStoreRead, GivesTextsNumbersAndBlobsWithTheirTags)
{
    const Held<IPropertyStore> store = opened(STGM_READ);

    Variant text;
    ASSERT_EQ(S_OK, store->GetValue(keys::deviceDescription, &text));
    ASSERT_EQ(VT_LPWSTR, text->vt);
    EXPECT_EQ("Speakers", sim::utf8(text->pwszVal));
    Variant number;
    ASSERT_EQ(S_OK, store->GetValue(keys::speakerConfig, &number));
    ASSERT_EQ(VT_UI4, number->vt);
    EXPECT_EQ(3u, number->ulVal);
    EXPECT_EQ(40u, formatOf(store).size());
}

// Wine's tests of the property store, which were run on Windows: the device format is a blob of 40 bytes, a
// WAVEFORMATEXTENSIBLE that says so in its tag and its size.
TEST_F(SimulatedPropertyStoreRead, GivesTheDeviceFormatAsAnExtensibleOneOfFortyBytes)
{
    const std::vector<BYTE> bytes = formatOf(opened(STGM_READ));

    WAVEFORMATEXTENSIBLE format = {};
    ASSERT_EQ(40u, bytes.size());
    ASSERT_EQ(bytes.size(), sizeof(format));
    std::memcpy(&format, bytes.data(), sizeof(format));
    EXPECT_EQ(0xFFFE, format.Format.wFormatTag); // WAVE_FORMAT_EXTENSIBLE
    EXPECT_EQ(22, format.Format.cbSize);         // the bytes after the WAVEFORMATEX
    EXPECT_EQ(2, format.Format.nChannels);
    EXPECT_EQ(48000u, format.Format.nSamplesPerSec);
}

TEST_F(SimulatedPropertyStoreRead, AnswersAMissingKeyWithSuccessAndAnEmptyValue)
{
    PROPVARIANT value;
    value.vt = VT_LPWSTR;
    value.pwszVal = poison<WCHAR>();

    EXPECT_EQ(S_OK, opened(STGM_READ)->GetValue(foreignKey, &value));

    EXPECT_EQ(VT_EMPTY, value.vt);
    EXPECT_EQ(nullptr, value.pwszVal);
}

// Wine's tests of the property store, which were run on Windows: the friendly name is the description and, in
// parentheses, the name of the interface.
TEST_F(SimulatedPropertyStoreRead, GivesTheFullNameThatTheDescriptionAndTheCardMakeUp)
{
    set(keys::deviceDescription, sim::PropertyValue::ofText("Jack"));
    set(keys::friendlyName, sim::PropertyValue::ofText("Card"));
    EXPECT_EQ("Jack (Card)", textOf(keys::fullName));

    set(keys::fullName, sim::PropertyValue::ofText("Given"));
    EXPECT_EQ("Given", textOf(keys::fullName));
}

TEST_F(SimulatedPropertyStoreRead, MakesUpTheFullNameEvenIfItsPartsAreMissingOrMistyped)
{
    set(keys::deviceDescription, sim::PropertyValue::ofNumber(7));
    simulation.change([&](sim::Machine& machine)
                      { sim::removeProperty(machine.endpoint(speakerId)->properties, keys::friendlyName); });

    EXPECT_EQ(" ()", textOf(keys::fullName));
}

TEST_F(SimulatedPropertyStoreRead, ListsItsKeysInTheMachinesOrderAndThenTheComposedOnes)
{
    const Held<IPropertyStore> store = opened(STGM_READ);
    DWORD count = 0;
    ASSERT_EQ(S_OK, store->GetCount(&count));
    const sim::Properties properties = simulation.machine().endpoint(speakerId)->properties;
    ASSERT_GT(count, properties.size());

    for (DWORD index = 0; index < count; ++index)
    {
        PROPERTYKEY key = {};
        EXPECT_EQ(S_OK, store->GetAt(index, &key));
        EXPECT_TRUE(index >= properties.size() || sim::sameKey(properties[index].key, key));
        Variant value;
        EXPECT_EQ(S_OK, store->GetValue(key, &value));
        EXPECT_NE(VT_EMPTY, value->vt) << index;
    }
    PROPERTYKEY key = {};
    EXPECT_EQ(E_INVALIDARG, store->GetAt(count, &key));
    EXPECT_EQ(E_POINTER, store->GetAt(0, nullptr));
    EXPECT_EQ(E_POINTER, store->GetValue(keys::friendlyName, nullptr));
}

TEST_F(SimulatedPropertyStoreRead, RefusesAnAccessThatDoesNotExist)
{
    auto* store = poison<IPropertyStore>();
    EXPECT_EQ(E_INVALIDARG, device(speakerId)->OpenPropertyStore(3, &store));
    EXPECT_EQ(nullptr, store);
}

// Microsoft's documentation of IPropertyStore::SetValue and IPropertyStore::Commit
TEST_F(SimulatedPropertyStoreWrite, RefusesToWriteThroughAStoreThatIsOpenForReading)
{
    const Held<IPropertyStore> store = opened(STGM_READ);
    std::vector<BYTE> bytes = {1, 2, 3};

    EXPECT_EQ(STG_E_ACCESSDENIED, store->SetValue(keys::deviceFormat, blobOf(bytes)));
    EXPECT_EQ(STG_E_ACCESSDENIED, store->Commit());
    EXPECT_EQ(40u, formatOf(store).size());
}

TEST_F(SimulatedPropertyStoreWrite, TakesACopyOfTheBlob)
{
    const Held<IPropertyStore> store = opened(STGM_READWRITE);
    std::vector<BYTE> bytes = {1, 2, 3};
    ASSERT_EQ(S_OK, store->SetValue(keys::deviceFormat, blobOf(bytes)));

    bytes.assign({9, 9, 9});

    EXPECT_THAT(formatOf(store), ElementsAre(1, 2, 3));
}

// Wine's tests of the property store, which were run on Windows: a value that is set shows without a Commit.
TEST_F(SimulatedPropertyStoreWrite, ShowsOtherStoresTheValueBeforeTheCommit)
{
    const Held<IPropertyStore> writer = opened(STGM_READWRITE);
    const Held<IPropertyStore> reader = opened(STGM_READ);
    std::vector<BYTE> bytes = {1, 2, 3};

    ASSERT_EQ(S_OK, writer->SetValue(keys::deviceFormat, blobOf(bytes)));

    EXPECT_THAT(formatOf(reader), ElementsAre(1, 2, 3));
    EXPECT_EQ(S_OK, writer->Commit());
    EXPECT_THAT(formatOf(reader), ElementsAre(1, 2, 3));
}

TEST_F(SimulatedPropertyStoreWrite, KeepsWhatIsNotCommitted)
{
    std::vector<BYTE> bytes = {1, 2, 3};
    ASSERT_EQ(S_OK, opened(STGM_READWRITE)->SetValue(keys::deviceFormat, blobOf(bytes)));

    EXPECT_THAT(formatOf(opened(STGM_READWRITE)), ElementsAre(1, 2, 3));
}

TEST_F(SimulatedPropertyStoreWrite, TakesAPropertyAwayThatIsSetToEmpty)
{
    const Held<IPropertyStore> store = opened(STGM_READWRITE);
    Variant empty;

    ASSERT_EQ(S_OK, store->SetValue(keys::deviceFormat, *&empty));
    ASSERT_EQ(S_OK, store->Commit());

    EXPECT_EQ(nullptr, sim::findProperty(simulation.machine().endpoint(speakerId)->properties, keys::deviceFormat));
}

TEST_F(SimulatedPropertyStoreWrite, ShowsItsValuesInTheOrderInWhichTheyAreSet)
{
    const Held<IPropertyStore> store = opened(STGM_WRITE);
    std::vector<BYTE> bytes = {1, 2, 3};
    Variant empty;
    const auto own = static_cast<DWORD>(simulation.machine().endpoint(speakerId)->properties.size());
    DWORD before = 0;
    DWORD count = 0;
    PROPERTYKEY last = {};
    EXPECT_EQ(S_OK, store->GetCount(&before));

    EXPECT_EQ(S_OK, store->SetValue(foreignKey, blobOf(bytes)));
    EXPECT_EQ(S_OK, store->GetCount(&count));
    EXPECT_EQ(before + 1, count);
    EXPECT_EQ(S_OK, store->GetAt(own, &last)); // after the machine's own, before the composed ones
    EXPECT_TRUE(sim::sameKey(foreignKey, last));
    EXPECT_EQ(S_OK, store->SetValue(foreignKey, *&empty));
    EXPECT_EQ(S_OK, store->GetCount(&count));

    EXPECT_EQ(before, count);
}
}
