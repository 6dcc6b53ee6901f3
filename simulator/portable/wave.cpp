#include "simulator/core/wave.h"

using namespace sim;

UINT WINAPI waveOutGetNumDevs()
{
    return wave::countOutputs();
}

UINT WINAPI waveInGetNumDevs()
{
    return wave::countInputs();
}

MMRESULT WINAPI waveOutMessage(HWAVEOUT device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return wave::sendToOutput(wave::idOf(device), message, first, second);
}

MMRESULT WINAPI waveInMessage(HWAVEIN device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return wave::sendToInput(wave::idOf(device), message, first, second);
}
