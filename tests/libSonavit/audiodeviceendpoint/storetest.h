/// Devices that open their property stores under an administrator's and an ordinary account.
#pragma once

#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"
#include "tests/libSonavit/supportstoreaccess.h"

namespace storetest
{
using devicetest::waveFormat;

inline const sim::DeviceFormat usualFormat = {16, 48000, 2};
inline const sim::DeviceFormat betterFormat = {24, 96000, 2};

/// What one device did from its construction to its destruction.
struct Life
{
    bool isInitialized = false;
    std::vector<std::string> calls;
    std::vector<std::string> records;
    std::string name;
    bool hasFormat = false;
};

class AudioDeviceStore : public devicetest::DeviceTest
{
protected:
    void start(sim::Account account)
    {
        bench.account(account);
        DeviceTest::start();
        simulation().journal().recordReferences(true);
    }

    std::vector<std::string> openings() { return simulation().journal().of(support::opening).calls(); }

    Life live()
    {
        simulation().journal().clear();
        log.clear();
        Life life;
        {
            AudioDevice device;
            life.isInitialized = device.initialize(reference(speaker.id()));
            life.name = device.deviceProperty().endpointType.toUtf8();
            life.hasFormat = waveFormat(usualFormat) == device.deviceProperty().format;
        }
        life.calls = simulation().journal().entries().calls();
        life.records = records();
        return life;
    }
};

/// Under an ordinary account, in a process that does not call AudioDevice::setStoreAccess().
class AudioDeviceStoreByDefault : public AudioDeviceStore
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start(sim::Account::ordinary);
    }
};

/// Under an ordinary account, in a process that opens a store for reading if writing is denied.
class AudioDeviceStoreForReading : public AudioDeviceStoreByDefault
{
    const support::ChosenAccess m_access{StoreAccess::writeElseRead};
};

/// Under an administrator's account, in such a process.
class AudioDeviceStoreOfAdministrator : public AudioDeviceStore
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start(sim::Account::administrator);
    }

private:
    const support::ChosenAccess m_access{StoreAccess::writeElseRead};
};
}
