#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "qor/exception.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportstackobject.h"

#include <memory>

namespace
{
using devicetest::waveFormat;
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

const sim::DeviceFormat usual = {16, 48000, 2};
const sim::DeviceFormat better = {24, 96000, 2};

/// A store that accepts every value and stores none.
class AcceptingStore final : public support::StackObject<IPropertyStore>
{
public:
    HRESULT STDMETHODCALLTYPE GetCount(DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetAt(DWORD, PROPERTYKEY*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY, PROPVARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY, REFPROPVARIANT) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Commit() override { return S_OK; }
};

/// A device whose OpenPropertyStore returns a failure code and stores a pointer nevertheless.
class FailingWithAStore final : public support::StackObject<IMMDevice>
{
public:
    HRESULT STDMETHODCALLTYPE Activate(REFIID, DWORD, PROPVARIANT*, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetId(LPWSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetState(DWORD*) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD, IPropertyStore** opened) override
    {
        *opened = &store;
        return E_FAIL;
    }

    AcceptingStore store;
};

/// A device on the speaker with the format `usual`.
class AudioDeviceSetFormat : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
        kept.directSoundTexts = 1;
        m_device = std::make_unique<AudioDevice>(reference(speaker.id()));
        log.clear();
        simulation().journal().clear();
    }

    void TearDown() override
    {
        m_device.reset();
        DeviceTest::TearDown();
    }

    AudioDevice& device() { return *m_device; }

    /// Destroys the device without a restore.
    void forgetTheChange() { device().m_savedProperties.format = device().m_properties.format; }

private:
    std::unique_ptr<AudioDevice> m_device;
};

TEST_F(AudioDeviceSetFormat, WritesTheFormatAndReadsItBack)
{
    kept.directSoundTexts = 3;
    const WAVEFORMATEXTENSIBLE format = waveFormat(better);

    EXPECT_TRUE(device().setFormat(format));

    EXPECT_EQ(better.bytes(), storedFormat(speaker.id()));
    EXPECT_TRUE(format == device().deviceProperty().format);
    EXPECT_TRUE(waveFormat(better) == format);
}

TEST_F(AudioDeviceSetFormat, WritesCommitsClosesOpensAndReads)
{
    kept.directSoundTexts = 3;
    withoutDebugMessages();
    simulation().journal().recordReferences(true);

    device().setFormat(waveFormat(better));

    const std::vector<std::string> calls = simulation().journal().entries().calls();
    ASSERT_LE(5u, calls.size());
    EXPECT_THAT(std::vector<std::string>(calls.begin(), calls.begin() + 4),
                ElementsAre("IPropertyStore::SetValue(deviceFormat)", "IPropertyStore::Commit()",
                            "IPropertyStore::Release()", "IMMDevice::OpenPropertyStore(2)"));
    EXPECT_EQ(7u, simulation().journal().count("IPropertyStore::GetValue"));
    EXPECT_EQ(1, references("IPropertyStore " + speaker.id()));
    EXPECT_EQ(1, simulation().census().objects.at("IPropertyStore"));
}

TEST_F(AudioDeviceSetFormat, TracesItselfAndTheRefresh)
{
    kept.directSoundTexts = 3;

    device().setFormat(waveFormat(better));

    EXPECT_EQ("AudioDevice::setFormat", log.entered(channels::audioDevice).at(0));
    EXPECT_EQ("AudioDevice::refreshDeviceInformation()", log.entered(channels::audioDevice).at(1));
    EXPECT_EQ("AudioDevice::setFormat", log.left(channels::audioDevice).back());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
}

TEST_F(AudioDeviceSetFormat, WritesTheCurrentFormatAsWell)
{
    kept.directSoundTexts = 2;

    EXPECT_TRUE(device().setFormat(waveFormat(usual)));

    EXPECT_EQ(1u, simulation().journal().count("IPropertyStore::SetValue"));
    EXPECT_EQ(1u, simulation().journal().count("IPropertyStore::Commit"));
    EXPECT_EQ(1u, simulation().journal().count("IMMDevice::OpenPropertyStore"));
    EXPECT_EQ(7u, simulation().journal().count("IPropertyStore::GetValue"));
}

TEST_F(AudioDeviceSetFormat, MayBeGivenTheDevicesOwnFormat)
{
    kept.directSoundTexts = 2;

    EXPECT_TRUE(device().setFormat(device().deviceProperty().format));

    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceSetFormat, ShowsTheFormatThatTheSystemHasStored)
{
    kept.directSoundTexts = 3;
    const sim::DeviceFormat rounded = {24, 48000, 2};
    sim::PlannedFault round = simulation().faults().run(
        "IMMDevice::OpenPropertyStore", [this, rounded]
        { setProperty(speaker.id(), sim::keys::deviceFormat, sim::PropertyValue::ofBytes(rounded.bytes())); });
    round.at(1);

    EXPECT_TRUE(device().setFormat(waveFormat(better)));

    EXPECT_EQ(1u, round.fired());
    EXPECT_TRUE(waveFormat(rounded) == device().deviceProperty().format);
}

TEST_F(AudioDeviceSetFormat, LeavesTheSavedPropertiesUnchanged)
{
    kept.directSoundTexts = 3;

    device().setFormat(waveFormat(better));

    EXPECT_TRUE(waveFormat(usual) == device().m_savedProperties.format);
}

TEST_F(AudioDeviceSetFormat, OnAnEmptyDeviceThrows)
{
    AudioDevice empty;

    try
    {
        empty.setFormat(waveFormat(better));
        FAIL() << "no exception";
    }
    catch (const qor::AssertionFailure& failure)
    {
        EXPECT_STREQ("m_propertyStore.get() != NULL", failure.expression());
    }
    EXPECT_EQ("AudioDevice::setFormat", log.left(channels::audioDevice).back());
}

TEST_F(AudioDeviceSetFormat, ReportsAFormatThatTheSystemRefusesAndKeepsTheStoreOpen)
{
    kept.directSoundTexts = 2;
    sim::PlannedFault fault = simulation().faults().fail("IPropertyStore::SetValue", E_ACCESSDENIED);

    EXPECT_FALSE(device().setFormat(waveFormat(better)));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("IPropertyStore::SetValue failed 0x80070005"));
    EXPECT_THAT(simulation().journal().operations(), ElementsAre("IPropertyStore::SetValue"));
    EXPECT_TRUE(waveFormat(usual) == device().deviceProperty().format);
    EXPECT_NE(nullptr, device().m_propertyStore.get());
    EXPECT_TRUE(device().refreshDeviceInformation());
    EXPECT_EQ(0u, simulation().journal().count("IMMDevice::OpenPropertyStore"));
}

TEST_F(AudioDeviceSetFormat, IgnoresTheResultOfCommit)
{
    kept.directSoundTexts = 3;
    sim::PlannedFault fault = simulation().faults().fail("IPropertyStore::Commit", E_FAIL);

    EXPECT_TRUE(device().setFormat(waveFormat(better)));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
    EXPECT_TRUE(waveFormat(better) == device().deviceProperty().format); // a store shows what is set at once
}

TEST_F(AudioDeviceSetFormat, LogsAStoreThatCannotBeReopened)
{
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore", E_FAIL);

    EXPECT_FALSE(device().setFormat(waveFormat(better)));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("Cannot open a new property store 0x80004005"));
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
    EXPECT_EQ(nullptr, device().m_propertyStore.get());
    EXPECT_EQ(0, simulation().census().references("IPropertyStore"));
    EXPECT_EQ(better.bytes(), storedFormat(speaker.id()));
    EXPECT_TRUE(waveFormat(usual) == device().deviceProperty().format);
}

TEST_F(AudioDeviceSetFormat, WritesTheFormatAndOpensNoStoreIfTheDeviceIsNullSince)
{
    device().initialize(static_cast<IMMDevice*>(nullptr));
    log.clear();
    simulation().journal().clear();

    EXPECT_FALSE(device().setFormat(waveFormat(better)));

    EXPECT_EQ(better.bytes(), storedFormat(speaker.id()));
    EXPECT_EQ(nullptr, device().m_propertyStore.get());
    EXPECT_EQ(0u, simulation().journal().of("IMMDevice::OpenPropertyStore").size());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceSetFormat, HoldsNoStoreThatComesWithAFailureCode)
{
    FailingWithAStore failing;
    {
        AudioDevice bound;
        bound.m_device = failing.handle();
        bound.m_propertyStore = failing.store.handle();

        EXPECT_FALSE(bound.setFormat(waveFormat(better)));

        EXPECT_EQ(nullptr, bound.m_propertyStore.get());
        EXPECT_EQ(1u, failing.store.references);
    }
    EXPECT_EQ(1u, failing.store.references);
    EXPECT_EQ(1u, failing.references);
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("Cannot open a new property store 0x80004005"));
}

TEST_F(AudioDeviceSetFormat, LeavesOpeningTheStoreToTheNextRefresh)
{
    kept.directSoundTexts = 2;
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore", E_FAIL).at(1);
    device().setFormat(waveFormat(better));
    EXPECT_THROW(device().setFormat(waveFormat(usual)), qor::AssertionFailure);

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(waveFormat(better) == device().deviceProperty().format);
    forgetTheChange();
}

TEST_F(AudioDeviceSetFormat, ReturnsTheResultOfTheRefreshAfterTheWrite)
{
    sim::PlannedFault nothing = simulation().faults().succeedWithNull("IMMDevice::OpenPropertyStore").at(1);
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED).at(2);

    EXPECT_FALSE(device().setFormat(waveFormat(better)));

    EXPECT_EQ(1u, nothing.fired());
    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x80070005"));
}

#if !defined(_WIN32)
TEST_F(AudioDeviceSetFormat, DoesNotClearTheVariantThatItWrites)
{
    kept.directSoundTexts = 3;
    const sim::Census before = simulation().census();

    device().setFormat(waveFormat(better));

    EXPECT_EQ(0u, simulation().journal().of("CoTaskMemFree").with("unknown block").size());
    EXPECT_EQ(6u, simulation().journal().count("PropVariantClear")); // those of the refresh
    EXPECT_EQ(1, simulation().census().taskBlocks() - before.taskBlocks());
}
#endif
}
