/// @file
/// The enumerator's lists of endpoints as they were answered.
#pragma once

#include "client/capturing/recorder.h"
#include "client/reading/handle.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sonavit::capturing
{
/// One item of a list.
struct ListedDevice
{
    reading::Handle<IMMDevice> device; ///< nil: Item failed
    std::optional<std::string> id;     ///< no value: it has none, or GetId failed
    HRESULT idResult = S_OK;
};

/// One list.
struct DeviceList
{
    bool isThere = false; ///< the platform gave the list and its count
    std::vector<ListedDevice> items;

    /// Whether an item has that id.
    bool contains(const std::string& id) const;
    /// Whether an item has no id, or could not be read.
    bool hasUnknown() const;
};

/// Asks for lists, each once, when they are needed first. What fails at the lists is noted; what fails at the ids of
/// their items is not, as it concerns endpoints.
class DeviceLists
{
public:
    DeviceLists(IMMDeviceEnumerator& enumerator, Recorder& recorder) : m_enumerator(enumerator), m_recorder(recorder) {}

    const DeviceList& list(EDataFlow flow, DWORD states);

private:
    DeviceList read(EDataFlow flow, DWORD states);
    void readItems(IMMDeviceCollection& collection, const std::string& name, DeviceList& list);
    ListedDevice readItem(IMMDeviceCollection& collection, const std::string& name, UINT index);

    IMMDeviceEnumerator& m_enumerator;
    Recorder& m_recorder;
    std::map<std::pair<EDataFlow, DWORD>, DeviceList> m_lists;
};
}
