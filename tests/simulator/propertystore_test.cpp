#include "tests/simulator/bench.h"

#include "simulator/machine/propertykeys.h"

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

TEST_F(SimulatedPropertyStoreRead, ListsItsKeysInTheMachinesOrder)
{
    const Held<IPropertyStore> store = opened(STGM_READ);
    DWORD count = 0;
    ASSERT_EQ(S_OK, store->GetCount(&count));
    const sim::Properties properties = simulation.machine().endpoint(speakerId)->properties;
    ASSERT_EQ(properties.size(), count);

    for (DWORD index = 0; index < count; ++index)
    {
        PROPERTYKEY key = {};
        EXPECT_EQ(S_OK, store->GetAt(index, &key));
        EXPECT_TRUE(sim::sameKey(properties[index].key, key));
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

TEST_F(SimulatedPropertyStoreWrite, RefusesToWriteThroughAStoreThatIsOpenForReading)
{
    const Held<IPropertyStore> store = opened(STGM_READ);
    std::vector<BYTE> bytes = {1, 2, 3};

    EXPECT_EQ(E_ACCESSDENIED, store->SetValue(keys::deviceFormat, blobOf(bytes)));
    EXPECT_EQ(E_ACCESSDENIED, store->Commit());
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

TEST_F(SimulatedPropertyStoreWrite, ShowsOtherStoresTheValueAfterTheCommit)
{
    const Held<IPropertyStore> writer = opened(STGM_READWRITE);
    const Held<IPropertyStore> reader = opened(STGM_READ);
    std::vector<BYTE> bytes = {1, 2, 3};

    ASSERT_EQ(S_OK, writer->SetValue(keys::deviceFormat, blobOf(bytes)));
    EXPECT_EQ(40u, formatOf(reader).size());
    ASSERT_EQ(S_OK, writer->Commit());

    EXPECT_THAT(formatOf(reader), ElementsAre(1, 2, 3));
}

TEST_F(SimulatedPropertyStoreWrite, ForgetsWhatIsNotCommitted)
{
    std::vector<BYTE> bytes = {1, 2, 3};
    ASSERT_EQ(S_OK, opened(STGM_READWRITE)->SetValue(keys::deviceFormat, blobOf(bytes)));

    EXPECT_EQ(40u, formatOf(opened(STGM_READWRITE)).size());
}

TEST_F(SimulatedPropertyStoreWrite, TakesAPropertyAwayThatIsSetToEmpty)
{
    const Held<IPropertyStore> store = opened(STGM_READWRITE);
    Variant empty;

    ASSERT_EQ(S_OK, store->SetValue(keys::deviceFormat, *&empty));
    ASSERT_EQ(S_OK, store->Commit());

    EXPECT_EQ(nullptr, sim::findProperty(simulation.machine().endpoint(speakerId)->properties, keys::deviceFormat));
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
    PROPVARIANT time;
    PropVariantInit(&time);
    time.vt = VT_FILETIME;

    EXPECT_EQ(S_OK, store->SetValue(keys::friendlyName, text));
    EXPECT_EQ(S_OK, store->SetValue(keys::speakerConfig, number));
    EXPECT_EQ(E_INVALIDARG, store->SetValue(foreignKey, time));
    EXPECT_EQ(S_OK, store->Commit());

    const sim::Properties properties = simulation.machine().endpoint(speakerId)->properties;
    EXPECT_EQ("Übung", sim::findProperty(properties, keys::friendlyName)->text);
    EXPECT_EQ(63u, sim::findProperty(properties, keys::speakerConfig)->number);
}
}
