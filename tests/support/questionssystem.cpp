#include "tests/support/questionssystem.h"

#include "OSWindows/configmanager.h"

#include <vector>

namespace support
{
namespace
{
/// A wave device's number in place of a handle.
template<class Handle>
Handle handleOf(UINT number)
{
    return reinterpret_cast<Handle>(static_cast<DWORD_PTR>(number));
}

std::string textOfUnits(const std::vector<WCHAR>& units)
{
    return '"' + sim::utf8(units.data()) + '"';
}

template<class Handle>
void askWaveDevice(Notes& notes, const std::string& function, UINT number,
                   MMRESULT(WINAPI* send)(Handle, UINT, DWORD_PTR, DWORD_PTR))
{
    const std::string object = "number " + answerText(number);
    const auto handle = handleOf<Handle>(number);
    DWORD_PTR bytes = 0;
    const MMRESULT sized = send(handle, DRV_QUERYFUNCTIONINSTANCEIDSIZE, reinterpret_cast<DWORD_PTR>(&bytes), 0);
    notes.add(function + "(size)", object, static_cast<HRESULT>(sized),
              sized == MMSYSERR_NOERROR ? answerText(bytes) : std::string());
    std::vector<WCHAR> id(4096);
    const MMRESULT identified = send(handle, DRV_QUERYFUNCTIONINSTANCEID, reinterpret_cast<DWORD_PTR>(id.data()),
                                     (id.size() - 1) * sizeof(WCHAR));
    notes.add(function + "(id)", object, static_cast<HRESULT>(identified),
              identified == MMSYSERR_NOERROR ? textOfUnits(id) : std::string());
    notes.add(function + "(0)", object, static_cast<HRESULT>(send(handle, 0, 0, 0)), std::string());
}

/// @return the parent; empty if there is none
std::string parentOf(Notes& notes, const std::string& instance)
{
    qor::String parent;
    const bool isThere =
        libOSWindows::ConfigManager::getParentDeviceInstanceId(qor::String::fromUtf8(instance), parent);
    notes.add("parent", instance, isThere ? S_OK : S_FALSE, parent.toUtf8());
    return parent.toUtf8();
}
}

void askWaveDevices(Notes& notes)
{
    const UINT outputs = waveOutGetNumDevs();
    notes.add("waveOutGetNumDevs", "the system", S_OK, outputs);
    for (UINT number = 0; number <= believable(outputs); ++number)
        askWaveDevice<HWAVEOUT>(notes, "waveOutMessage", number, waveOutMessage);
    const UINT inputs = waveInGetNumDevs();
    notes.add("waveInGetNumDevs", "the system", S_OK, inputs);
    for (UINT number = 0; number <= believable(inputs); ++number)
        askWaveDevice<HWAVEIN>(notes, "waveInMessage", number, waveInMessage);
}

void askInstances(Notes& notes, const std::set<std::string>& instances)
{
    for (std::string instance : instances)
    {
        while (!instance.empty() && notes.isNew("instance " + instance))
            instance = parentOf(notes, instance);
    }
    parentOf(notes, "NOTHING\\AT_ALL\\0");
}
}
