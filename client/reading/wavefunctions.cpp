#include "client/reading/wavefunctions.h"

namespace sonavit::reading
{
namespace
{
/// A device number is passed in place of a handle.
template<class Handle>
Handle handleOf(UINT number)
{
    return reinterpret_cast<Handle>(static_cast<DWORD_PTR>(number));
}

constexpr WaveFunctions outputs = {[]() -> UINT { return waveOutGetNumDevs(); }, "waveOutGetNumDevs",
                                   [](UINT number, UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
                                   { return waveOutMessage(handleOf<HWAVEOUT>(number), message, first, second); },
                                   "waveOutMessage"};
constexpr WaveFunctions inputs = {[]() -> UINT { return waveInGetNumDevs(); }, "waveInGetNumDevs",
                                  [](UINT number, UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
                                  { return waveInMessage(handleOf<HWAVEIN>(number), message, first, second); },
                                  "waveInMessage"};
}

const WaveFunctions& waveFunctions(Flow flow)
{
    return flow == Flow::output ? outputs : inputs;
}
}
