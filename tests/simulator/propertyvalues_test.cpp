#include "tests/simulator/propertystoretest.h"
#include "tests/support/pace.h"

#include <cstring>

// The values of each tag, as property stores give and take them.
namespace
{
using bench::blobOf;
using bench::foreignKey;
using bench::Held;
using bench::poison;
using bench::Variant;
namespace keys = sim::keys;

using SimulatedPropertyValueRead = bench::PropertyStoreTest;
using SimulatedPropertyValueWrite = bench::PropertyStoreTest;

TEST_F(SimulatedPropertyValueRead, GivesATextThatTheMachineHasNotAsANullPointer)
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

TEST_F(SimulatedPropertyValueRead, GivesEveryNumberInTheMemberOfItsTag)
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

TEST_F(SimulatedPropertyValueRead, GivesLongRealsAndNarrowTexts)
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

TEST_F(SimulatedPropertyValueRead, GivesAnyOtherTagWithZerosThatCanBeCleared)
{
    const Held<IPropertyStore> store = opened(STGM_READ);
    for (DWORD tag = 1; tag <= 0xFFFF; tag += tag < 0x1100 ? 1 : support::cases(1, 151))
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

TEST_F(SimulatedPropertyValueRead, GivesARealNumber)
{
    set(foreignKey, sim::PropertyValue::ofReal(-1.5f));

    Variant value;
    EXPECT_EQ(S_OK, opened(STGM_READ)->GetValue(foreignKey, &value));

    EXPECT_EQ(VT_R4, value->vt);
    EXPECT_EQ(-1.5f, value->fltVal);
}

TEST_F(SimulatedPropertyValueRead, GivesAGuidInMemoryThatTheClearFrees)
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

TEST_F(SimulatedPropertyValueRead, GivesAnEmptyBlobWithoutMemory)
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

TEST_F(SimulatedPropertyValueWrite, TakesEveryNumberFromTheMemberOfItsTag)
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

TEST_F(SimulatedPropertyValueWrite, TakesLargeNumbersRealNumbersAndGuids)
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

TEST_F(SimulatedPropertyValueWrite, TakesSignedLargeNumbersTimesLongRealsAndNarrowTexts)
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

TEST_F(SimulatedPropertyValueWrite, TakesAnEmptyBlobAndANullText)
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

TEST_F(SimulatedPropertyValueWrite, TakesTextsAndNumbersButNotEveryTag)
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
