#include "simulator/machine/propertykeys.h"
#include "tests/simulator/bench.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace
{
using bench::Held;
using testing::ElementsAre;
using testing::IsEmpty;

class FaultPlanLie : public bench::SimulationTest
{
protected:
    /// The units of a string that the platform has stored, which is freed; no value for null.
    static std::optional<std::u16string> unitsOf(LPWSTR text)
    {
        if (text == nullptr)
            return std::nullopt;
        std::u16string units;
        for (const WCHAR* unit = text; *unit != 0; ++unit)
            units.push_back(static_cast<char16_t>(*unit));
        CoTaskMemFree(text);
        return units;
    }

    std::optional<std::u16string> idOf(const Held<IMMDevice>& device)
    {
        LPWSTR id = nullptr;
        EXPECT_EQ(S_OK, device->GetId(&id));
        return unitsOf(id);
    }

    PROPVARIANT valueOf(const Held<IMMDevice>& device, const PROPERTYKEY& key)
    {
        PROPVARIANT value;
        PropVariantInit(&value);
        Held<IPropertyStore> store;
        EXPECT_EQ(S_OK, device->OpenPropertyStore(STGM_READ, store.put()));
        EXPECT_EQ(S_OK, store->GetValue(key, &value));
        return value;
    }

    Held<IMMDevice> speaker = device(speakerId);
};
}

TEST_F(FaultPlanLie, IsToldInPlaceOfANumber)
{
    const Held<IDeviceTopology> codec = topology(codecId);
    const sim::PlannedFault lie =
        simulation.faults().lie("IDeviceTopology::GetConnectorCount", sim::Lie::ofNumber(10000));
    UINT count = 0;

    EXPECT_EQ(S_OK, codec->GetConnectorCount(&count));

    EXPECT_EQ(10000u, count);
    EXPECT_EQ(1u, lie.fired());
    EXPECT_THAT(simulation.faults().unmet(), IsEmpty());
}

TEST_F(FaultPlanLie, GivesShorterNumbersAndEnumerationsItsLowBits)
{
    const Held<IMMEndpoint> endpoint = speaker.as<IMMEndpoint>();
    simulation.faults().lie("IMMEndpoint::GetDataFlow", sim::Lie::ofNumber(77));
    simulation.faults().lie("IMMDevice::GetState", sim::Lie::ofNumber(std::numeric_limits<std::uint64_t>::max()));
    EDataFlow flow = eRender;
    DWORD state = 0;

    endpoint->GetDataFlow(&flow);
    speaker->GetState(&state);

    EXPECT_EQ(77, static_cast<int>(flow));
    EXPECT_EQ(0xFFFFFFFFu, state);
}

TEST_F(FaultPlanLie, IsToldInPlaceOfAStringOfAnyUnits)
{
    const std::u16string single = {u'a', char16_t(0xD800), u'b', char16_t(0xDC00)};
    simulation.faults().lie("IMMDevice::GetId", sim::Lie::ofText(single)).at(1);
    simulation.faults().lie("IMMDevice::GetId", sim::Lie::ofText(std::nullopt)).at(2);
    simulation.faults().lie("IMMDevice::GetId", sim::Lie::ofText(u"")).at(3);

    EXPECT_EQ(single, idOf(speaker));
    EXPECT_EQ(std::nullopt, idOf(speaker));
    EXPECT_EQ(u"", idOf(speaker));
}

TEST_F(FaultPlanLie, IsToldInPlaceOfTheStringOrNumberOfAProperty)
{
    simulation.faults().lie("IPropertyStore::GetValue", sim::Lie::ofText(u"another name"));
    simulation.faults().lie("IPropertyStore::GetValue", sim::Lie::ofNumber(5));

    PROPVARIANT name = valueOf(speaker, sim::keys::friendlyName);
    PROPVARIANT form = valueOf(speaker, sim::keys::formFactor);

    EXPECT_EQ(VT_LPWSTR, name.vt);
    EXPECT_EQ(u"another name", unitsOf(name.pwszVal));
    EXPECT_EQ(VT_UI4, form.vt);
    EXPECT_EQ(5u, form.ulVal);
}

TEST_F(FaultPlanLie, LeavesABlobWithoutItsData)
{
    simulation.faults().lie("IPropertyStore::GetValue", sim::Lie::ofBlobWithoutData(40));

    PROPVARIANT format = valueOf(speaker, sim::keys::deviceFormat);

    EXPECT_EQ(VT_BLOB, format.vt);
    EXPECT_EQ(40u, format.blob.cbSize);
    EXPECT_EQ(nullptr, format.blob.pBlobData);
}

TEST_F(FaultPlanLie, GivesAnotherObjectWithAReferenceOfItsOwn)
{
    const Held<IPart> mute = part(muteId);
    const Held<IConnector> jack = connector(speakerJack);
    simulation.faults().lie("IConnector::QueryInterface", sim::Lie::ofObject(*mute.get())).with("IPart");

    const Held<IPart> found = jack.as<IPart>();

    EXPECT_EQ(mute.get(), found.get());
    EXPECT_EQ(2, simulation.census().byObject["ISubunit " + muteId]);
}

/// An object of the test's own, which no machine knows.
class Stranger final : public IUnknown
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
};

TEST_F(FaultPlanLie, OfSeveralObjectsGivesTheLastOneAndKeepsNoReferenceOfTheOthers)
{
    const Held<IConnector> jack = connector(speakerJack);
    Stranger first;
    Stranger last;
    simulation.faults().lie("IConnector::QueryInterface", sim::Lie::ofObject(first)).with("IPart");
    simulation.faults().lie("IConnector::QueryInterface", sim::Lie::ofObject(last)).with("IPart");
    void* found = nullptr;

    EXPECT_EQ(S_OK, jack->QueryInterface(IID_IPart, &found));

    EXPECT_EQ(&last, found);
    EXPECT_EQ(1u, first.references);
    EXPECT_EQ(2u, last.references);
}

TEST_F(FaultPlanLie, IsNotToldByACallThatFails)
{
    const Held<IDeviceTopology> codec = topology(codecId);
    const Held<IConnector> jack = connector(speakerJack);
    simulation.faults().lie("IDeviceTopology::GetConnector", sim::Lie::ofObject(*jack.get()));
    Held<IConnector> found;

    EXPECT_EQ(E_INVALIDARG, codec->GetConnector(1000, found.put()));

    EXPECT_EQ(nullptr, found.get());
}

TEST_F(FaultPlanLie, LeavesOutParametersOfOtherTypesAsTheyAre)
{
    simulation.faults().lie("IMMDevice::GetId", sim::Lie::ofNumber(7));
    simulation.faults().lie("IMMDevice::GetState", sim::Lie::ofText(u"seven"));
    DWORD state = 0;

    speaker->GetState(&state);

    EXPECT_EQ(DWORD(DEVICE_STATE_ACTIVE), state);
    EXPECT_EQ(std::u16string(speakerId.begin(), speakerId.end()), idOf(speaker));
}

TEST_F(FaultPlanLie, OfSeveralShowsTheLastOne)
{
    simulation.faults().lie("IMMDevice::GetState", sim::Lie::ofNumber(3));
    simulation.faults().lie("IMMDevice::GetState", sim::Lie::ofNumber(4));
    DWORD state = 0;

    speaker->GetState(&state);

    EXPECT_EQ(4u, state);
}
