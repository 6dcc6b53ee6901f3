#include "client/reading/endpointreading.h"
#include "client/reading/judge.h"
#include "client/reading/text.h"
#include "client/reading/wavefunctions.h"

#include <algorithm>
#include <utility>

namespace sonavit::reading
{
namespace
{
/// Asks for the size of the id, then for the id; empty if one of them fails.
EndpointId readId(const WaveFunctions& wave, UINT number, std::vector<Problem>& problems)
{
    const auto send = [&](UINT message, void* place, DWORD_PTR bytes)
    {
        const MMRESULT result = wave.message(number, message, reinterpret_cast<DWORD_PTR>(place), bytes);
        if (result != MMSYSERR_NOERROR)
            problems.push_back(failure({wave.messageName, nullptr, number}, {}, static_cast<HRESULT>(result)));
        return result == MMSYSERR_NOERROR;
    };
    DWORD_PTR size = 0;
    if (!send(DRV_QUERYFUNCTIONINSTANCEIDSIZE, &size, 0))
        return {};
    if (size == 0 || size > longestWaveId)
    {
        problems.push_back(failure({wave.messageName, nullptr, number}, {}, invalidData));
        return {};
    }
    std::vector<WCHAR> text((size + 1) / sizeof(WCHAR)); // a driver may report success and write nothing
    if (!send(DRV_QUERYFUNCTIONINSTANCEID, text.data(), size))
        return {};
    const auto end = std::find(text.begin(), text.end(), WCHAR{0});
    return EndpointId(utf8(text.data(), static_cast<std::size_t>(end - text.begin())));
}
}

WaveIds readWaveIds(Flow flow)
{
    WaveIds all;
    const WaveFunctions& wave = waveFunctions(flow);
    const UINT count = wave.count();
    if (count > mostWaveNumbers)
    {
        all.problems.push_back(failure({wave.countName}, {}, invalidData));
        return all;
    }
    for (UINT number = 0; number < count; ++number)
        all.ids[static_cast<std::size_t>(flow)].push_back(readId(wave, number, all.problems));
    return all;
}

WaveIds readWaveIds()
{
    WaveIds all = readWaveIds(Flow::output);
    WaveIds inputs = readWaveIds(Flow::input);
    all.ids[static_cast<std::size_t>(Flow::input)] = std::move(inputs.ids[static_cast<std::size_t>(Flow::input)]);
    all.problems.insert(all.problems.end(), inputs.problems.begin(), inputs.problems.end());
    return all;
}
}
