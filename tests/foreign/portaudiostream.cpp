// Opens a stream of PortAudio on the default output at its own rate, plays silence for a second, and closes it.
// PortAudio's own programs want 44.1 kHz, which a shared stream of another rate refuses, on Windows, too.
#include <portaudio.h>

#include <algorithm>
#include <cstdio>

namespace
{
int playSilence(const void*, void* output, unsigned long frames, const PaStreamCallbackTimeInfo*, PaStreamCallbackFlags,
                void* channels)
{
    std::fill_n(static_cast<float*>(output), frames * static_cast<unsigned long>(*static_cast<int*>(channels)), 0.0f);
    return paContinue;
}

/// Whether the step of that name has succeeded; if not, prints why.
bool succeeds(const char* step, PaError error)
{
    if (error != paNoError)
        std::fprintf(stderr, "%s: %s\n", step, Pa_GetErrorText(error));
    return error == paNoError;
}
}

int main()
{
    if (!succeeds("Pa_Initialize", Pa_Initialize()))
        return 1;
    const PaDeviceIndex device = Pa_GetDefaultOutputDevice();
    const PaDeviceInfo* const info = device == paNoDevice ? nullptr : Pa_GetDeviceInfo(device);
    bool isDone = false;
    if (info != nullptr)
    {
        PaStream* stream = nullptr;
        int channels = info->maxOutputChannels;
        const PaStreamParameters output = {device, channels, paFloat32, info->defaultHighOutputLatency, nullptr};
        isDone =
            succeeds("Pa_OpenStream", Pa_OpenStream(&stream, nullptr, &output, info->defaultSampleRate,
                                                    paFramesPerBufferUnspecified, paNoFlag, playSilence, &channels)) &&
            succeeds("Pa_StartStream", Pa_StartStream(stream));
        if (isDone)
            Pa_Sleep(1000);
        isDone = isDone && succeeds("Pa_StopStream", Pa_StopStream(stream)) &&
                 succeeds("Pa_CloseStream", Pa_CloseStream(stream));
    }
    Pa_Terminate();
    return isDone ? 0 : 1;
}
