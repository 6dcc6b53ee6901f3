#include "tests/simulator/bench.h"

#include "simulator/machine/propertykeys.h"

#include <cstring>

namespace
{
using bench::Held;
using bench::poison;
using testing::ElementsAre;
namespace keys = sim::keys;

constexpr PROPERTYKEY foreignKey = {{0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}}, 9};

/// A variant that is cleared at its end.
class Variant
{
public:
    Variant() { PropVariantInit(&m_value); }
    ~Variant() { PropVariantClear(&m_value); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    PROPVARIANT* operator&() { return &m_value; }
    PROPVARIANT* operator->() { return &m_value; }

private:
    PROPVARIANT m_value;
};

PROPVARIANT blobOf(std::vector<BYTE>& bytes)
{
    PROPVARIANT value;
    PropVariantInit(&value);
    value.vt = VT_BLOB;
    value.blob.cbSize = static_cast<ULONG>(bytes.size());
    value.blob.pBlobData = bytes.data();
    return value;
}

class SimulatedPropertyStore : public bench::SimulationTest
{
protected:
    Held<IPropertyStore> opened(DWORD access)
    {
        Held<IPropertyStore> store;
        EXPECT_EQ(S_OK, device(speakerId)->OpenPropertyStore(access, store.put()));
        return store;
    }

    void set(const PROPERTYKEY& key, const sim::PropertyValue& value)
    {
        simulation.change([&](sim::Machine& machine)
                          { sim::setProperty(machine.endpoint(speakerId)->properties, key, value); });
    }

    std::string textOf(const PROPERTYKEY& key)
    {
        Variant value;
        EXPECT_EQ(S_OK, opened(STGM_READ)->GetValue(key, &value));
        return value->vt == VT_LPWSTR ? sim::utf8(value->pwszVal) : "no text";
    }

    std::vector<BYTE> formatOf(const Held<IPropertyStore>& store)
    {
        Variant value;
        EXPECT_EQ(S_OK, store->GetValue(keys::deviceFormat, &value));
        if (value->vt != VT_BLOB)
            return {};
        return std::vector<BYTE>(value->blob.pBlobData, value->blob.pBlobData + value->blob.cbSize);
    }
};

using SimulatedPropertyStoreRead = SimulatedPropertyStore;
using SimulatedPropertyStoreWrite = SimulatedPropertyStore;

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

TEST_F(SimulatedPropertyStoreRead, GivesATextThatTheMachineHasNotAsANullPointer)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            sim::setProperty(machine.endpoint(speakerId)->properties, keys::friendlyName,
                             sim::PropertyValue::ofText(std::nullopt));
        });

    Variant value;
    EXPECT_EQ(S_OK, opened(STGM_READ)->GetValue(keys::friendlyName, &value));

    EXPECT_EQ(VT_LPWSTR, value->vt);
    EXPECT_EQ(nullptr, value->pwszVal);
}

TEST_F(SimulatedPropertyStoreRead, GivesEveryNumberInTheMemberOfItsTag)
{
    const auto stored = [&](std::uint64_t number, VARTYPE tag)
    {
        set(foreignKey, sim::PropertyValue::ofNumber(number, tag));
        PROPVARIANT value;
        EXPECT_EQ(S_OK, opened(STGM_READ)->GetValue(foreignKey, &value));
        EXPECT_EQ(tag, value.vt);
        return value;
    };

    EXPECT_EQ(-1, stored(0xFFFF, VT_BOOL).boolVal); // VARIANT_TRUE
    EXPECT_EQ(0, stored(0, VT_BOOL).boolVal);
    EXPECT_EQ(-2, stored(0xFFFE, VT_I2).iVal);
    EXPECT_EQ(0xFFFE, stored(0xFFFE, VT_UI2).uiVal);
    EXPECT_EQ(-2, static_cast<signed char>(stored(0xFE, VT_I1).cVal));
    EXPECT_EQ(0xFE, stored(0xFE, VT_UI1).bVal);
    EXPECT_EQ(-2, stored(0xFFFFFFFE, VT_I4).lVal);
    EXPECT_EQ(0xFFFFFFFEu, stored(0xFFFFFFFE, VT_UI4).ulVal);
    EXPECT_EQ(-2, stored(0xFFFFFFFE, VT_INT).intVal);
    EXPECT_EQ(0xFFFFFFFEu, stored(0xFFFFFFFE, VT_UINT).uintVal);
    EXPECT_EQ(0xFEDCBA9876543210u, stored(0xFEDCBA9876543210u, VT_UI8).uhVal.QuadPart);
    EXPECT_EQ(-2, stored(0xFFFFFFFFFFFFFFFEu, VT_I8).hVal.QuadPart);
    EXPECT_EQ(0x76543210u, stored(0xFEDCBA9876543210u, VT_FILETIME).filetime.dwLowDateTime);
    EXPECT_EQ(0xFEDCBA98u, stored(0xFEDCBA9876543210u, VT_FILETIME).filetime.dwHighDateTime);
}

TEST_F(SimulatedPropertyStoreRead, GivesLongRealsAndNarrowTexts)
{
    const Held<IPropertyStore> store = opened(STGM_READ);
    const auto give = [&](const sim::PropertyValue& value, PROPVARIANT* variant)
    {
        set(foreignKey, value);
        return store->GetValue(foreignKey, variant);
    };
    Variant real;
    Variant text;
    Variant empty;
    Variant null;

    ASSERT_EQ(S_OK, give(sim::PropertyValue::ofLongReal(0.1), &real));
    ASSERT_EQ(S_OK, give(sim::PropertyValue::ofNarrowText("caf\xE9"), &text));
    ASSERT_EQ(S_OK, give(sim::PropertyValue::ofNarrowText(""), &empty));
    ASSERT_EQ(S_OK, give(sim::PropertyValue::ofNarrowText(std::nullopt), &null));

    EXPECT_EQ(VT_R8, real->vt);
    EXPECT_EQ(0.1, real->dblVal);
    EXPECT_EQ(VT_LPSTR, text->vt);
    EXPECT_STREQ("caf\xE9", text->pszVal);
    EXPECT_STREQ("", empty->pszVal);
    EXPECT_EQ(VT_LPSTR, null->vt);
    EXPECT_EQ(nullptr, null->pszVal);
}

TEST_F(SimulatedPropertyStoreRead, GivesAnyOtherTagWithZerosThatCanBeCleared)
{
    const Held<IPropertyStore> store = opened(STGM_READ);
    for (DWORD tag = 1; tag <= 0xFFFF; ++tag)
    {
        sim::PropertyValue value = sim::PropertyValue::ofTag(static_cast<VARTYPE>(tag));
        if (tag == VT_VECTOR || tag == VT_VECTOR + VT_LPWSTR)
            value.number = 0xDEAD; // of no use with these tags
        set(foreignKey, value);
        PROPVARIANT variant;
        std::memset(&variant, 0xFF, sizeof variant);
        ASSERT_EQ(S_OK, store->GetValue(foreignKey, &variant)) << tag;

        ASSERT_EQ(tag, variant.vt);
        if (tag != VT_CLSID)
        {
            PROPVARIANT zeros;
            std::memset(&zeros, 0, sizeof zeros);
            zeros.vt = variant.vt;
            ASSERT_EQ(0, std::memcmp(&zeros, &variant, sizeof zeros)) << tag;
        }
        PropVariantClear(&variant);
        ASSERT_EQ(VT_EMPTY, variant.vt);
    }
}

TEST_F(SimulatedPropertyStoreRead, GivesARealNumber)
{
    set(foreignKey, sim::PropertyValue::ofReal(-1.5f));

    Variant value;
    EXPECT_EQ(S_OK, opened(STGM_READ)->GetValue(foreignKey, &value));

    EXPECT_EQ(VT_R4, value->vt);
    EXPECT_EQ(-1.5f, value->fltVal);
}

TEST_F(SimulatedPropertyStoreRead, GivesAGuidInMemoryThatTheClearFrees)
{
    const GUID guid = {0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 8}};
    set(foreignKey, sim::PropertyValue::ofGuid(guid));

    PROPVARIANT value;
    EXPECT_EQ(S_OK, opened(STGM_READ)->GetValue(foreignKey, &value));
    ASSERT_EQ(VT_CLSID, value.vt);
    EXPECT_TRUE(IsEqualGUID(guid, *value.puuid));
    EXPECT_EQ(1, simulation.census().taskBlocks());
    EXPECT_EQ(static_cast<long>(sizeof(GUID)), simulation.census().taskBytes);
    EXPECT_EQ(S_OK, PropVariantClear(&value));

    EXPECT_EQ(VT_EMPTY, value.vt);
    EXPECT_EQ(0, simulation.census().taskBlocks());
}

TEST_F(SimulatedPropertyStoreRead, GivesAnEmptyBlobWithoutMemory)
{
    set(keys::deviceFormat, sim::PropertyValue::ofBytes({}));
    const Held<IPropertyStore> store = opened(STGM_READ);
    PROPVARIANT value;
    value.vt = VT_EMPTY;
    value.blob.cbSize = 99;
    value.blob.pBlobData = poison<BYTE>();

    EXPECT_EQ(S_OK, store->GetValue(keys::deviceFormat, &value));

    EXPECT_EQ(VT_BLOB, value.vt);
    EXPECT_EQ(0u, value.blob.cbSize);
    EXPECT_EQ(nullptr, value.blob.pBlobData);
    EXPECT_EQ(0, simulation.census().taskBlocks());
    EXPECT_EQ(S_OK, PropVariantClear(&value));
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

TEST_F(SimulatedPropertyStoreWrite, TakesEveryNumberFromTheMemberOfItsTag)
{
    const Held<IPropertyStore> store = opened(STGM_READWRITE);
    const auto taken = [&](VARTYPE tag, ULONG bits)
    {
        PROPVARIANT value;
        PropVariantInit(&value);
        value.vt = tag;
        value.ulVal = bits;
        EXPECT_EQ(S_OK, store->SetValue(foreignKey, value));
        EXPECT_EQ(S_OK, store->Commit());
        const sim::Properties properties = simulation.machine().endpoint(speakerId)->properties;
        const sim::PropertyValue* const stored = sim::findProperty(properties, foreignKey);
        EXPECT_NE(nullptr, stored);
        EXPECT_EQ(tag, stored->tag);
        return stored->number;
    };

    for (const VARTYPE tag : {VT_I1, VT_UI1})
        EXPECT_EQ(0xF4u, taken(tag, 0xF1F2F3F4)) << tag;
    for (const VARTYPE tag : {VT_I2, VT_UI2, VT_BOOL})
        EXPECT_EQ(0xF3F4u, taken(tag, 0xF1F2F3F4)) << tag;
    for (const VARTYPE tag : {VT_I4, VT_UI4, VT_INT, VT_UINT})
        EXPECT_EQ(0xF1F2F3F4u, taken(tag, 0xF1F2F3F4)) << tag;
}

TEST_F(SimulatedPropertyStoreWrite, TakesLargeNumbersRealNumbersAndGuids)
{
    const Held<IPropertyStore> store = opened(STGM_READWRITE);
    const auto taken = [&](const PROPVARIANT& value)
    {
        EXPECT_EQ(S_OK, store->SetValue(foreignKey, value));
        return *sim::findProperty(simulation.machine().endpoint(speakerId)->properties, foreignKey);
    };
    PROPVARIANT large;
    PropVariantInit(&large);
    large.vt = VT_UI8;
    large.uhVal.QuadPart = 0xFEDCBA9876543210u;
    PROPVARIANT real;
    PropVariantInit(&real);
    real.vt = VT_R4;
    real.fltVal = -1.5f;
    CLSID guid = {0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 8}};
    PROPVARIANT identifier;
    PropVariantInit(&identifier);
    identifier.vt = VT_CLSID;

    EXPECT_EQ(E_INVALIDARG, store->SetValue(foreignKey, identifier)); // without a GUID
    identifier.puuid = &guid;

    EXPECT_EQ(sim::PropertyValue::ofNumber(0xFEDCBA9876543210u, VT_UI8), taken(large));
    EXPECT_EQ(sim::PropertyValue::ofReal(-1.5f), taken(real));
    EXPECT_EQ(sim::PropertyValue::ofGuid(guid), taken(identifier));
}

TEST_F(SimulatedPropertyStoreWrite, TakesSignedLargeNumbersTimesLongRealsAndNarrowTexts)
{
    const Held<IPropertyStore> store = opened(STGM_READWRITE);
    const auto taken = [&](const PROPVARIANT& value)
    {
        EXPECT_EQ(S_OK, store->SetValue(foreignKey, value));
        return *sim::findProperty(simulation.machine().endpoint(speakerId)->properties, foreignKey);
    };
    PROPVARIANT number;
    PropVariantInit(&number);
    number.vt = VT_I8;
    number.hVal.QuadPart = -2;
    PROPVARIANT time;
    PropVariantInit(&time);
    time.vt = VT_FILETIME;
    time.filetime.dwLowDateTime = 0x76543210;
    time.filetime.dwHighDateTime = 0xFEDCBA98;
    PROPVARIANT real;
    PropVariantInit(&real);
    real.vt = VT_R8;
    real.dblVal = -0.1;
    char bytes[] = "caf\xE9";
    PROPVARIANT text;
    PropVariantInit(&text);
    text.vt = VT_LPSTR;

    EXPECT_EQ(sim::PropertyValue::ofNumber(0xFFFFFFFFFFFFFFFEu, VT_I8), taken(number));
    EXPECT_EQ(sim::PropertyValue::ofNumber(0xFEDCBA9876543210u, VT_FILETIME), taken(time));
    EXPECT_EQ(sim::PropertyValue::ofLongReal(-0.1), taken(real));
    EXPECT_EQ(sim::PropertyValue::ofNarrowText(std::nullopt), taken(text));
    text.pszVal = bytes;
    EXPECT_EQ(sim::PropertyValue::ofNarrowText("caf\xE9"), taken(text));
}

TEST_F(SimulatedPropertyStoreWrite, TakesAnEmptyBlobAndANullText)
{
    const Held<IPropertyStore> store = opened(STGM_READWRITE);
    std::vector<BYTE> nothing;
    PROPVARIANT blob = blobOf(nothing);
    blob.blob.pBlobData = nullptr;
    blob.blob.cbSize = 5; // a size without bytes
    PROPVARIANT text;
    PropVariantInit(&text);
    text.vt = VT_LPWSTR;

    EXPECT_EQ(S_OK, store->SetValue(keys::deviceFormat, blob));
    EXPECT_EQ(S_OK, store->SetValue(keys::friendlyName, text));
    EXPECT_EQ(S_OK, store->Commit());

    const sim::Properties properties = simulation.machine().endpoint(speakerId)->properties;
    EXPECT_EQ(sim::PropertyValue::ofBytes({}), *sim::findProperty(properties, keys::deviceFormat));
    EXPECT_EQ(sim::PropertyValue::ofText(std::nullopt), *sim::findProperty(properties, keys::friendlyName));
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

TEST_F(SimulatedPropertyStoreWrite, TakesTextsAndNumbersButNotEveryTag)
{
    const Held<IPropertyStore> store = opened(STGM_READWRITE);
    std::vector<WCHAR> name = sim::utf16("Übung");
    PROPVARIANT text;
    PropVariantInit(&text);
    text.vt = VT_LPWSTR;
    text.pwszVal = name.data();
    PROPVARIANT number;
    PropVariantInit(&number);
    number.vt = VT_UI4;
    number.ulVal = 63;
    PROPVARIANT list;
    PropVariantInit(&list);
    list.vt = VT_VECTOR | VT_UI1;

    EXPECT_EQ(S_OK, store->SetValue(keys::friendlyName, text));
    EXPECT_EQ(S_OK, store->SetValue(keys::speakerConfig, number));
    EXPECT_EQ(E_INVALIDARG, store->SetValue(foreignKey, list));
    EXPECT_EQ(S_OK, store->Commit());

    const sim::Properties properties = simulation.machine().endpoint(speakerId)->properties;
    EXPECT_EQ("Übung", sim::findProperty(properties, keys::friendlyName)->text);
    EXPECT_EQ(63u, sim::findProperty(properties, keys::speakerConfig)->number);
}
}
