/// Volume interfaces that answer what the test has set: any value together with any HRESULT.
#pragma once

#include "tests/libSonavit/supportstackobject.h"

namespace support
{
class ScriptedEndpointVolume final : public StackObject<IAudioEndpointVolume>
{
public:
    HRESULT STDMETHODCALLTYPE RegisterControlChangeNotify(IAudioEndpointVolumeCallback*) override { return result; }
    HRESULT STDMETHODCALLTYPE UnregisterControlChangeNotify(IAudioEndpointVolumeCallback*) override { return result; }
    HRESULT STDMETHODCALLTYPE GetChannelCount(UINT* count) override { return give(channels, count); }
    HRESULT STDMETHODCALLTYPE SetMasterVolumeLevel(FLOAT, LPCGUID) override { return result; }
    HRESULT STDMETHODCALLTYPE SetMasterVolumeLevelScalar(FLOAT, LPCGUID) override { return result; }
    HRESULT STDMETHODCALLTYPE GetMasterVolumeLevel(FLOAT* target) override { return give(level, target); }
    HRESULT STDMETHODCALLTYPE GetMasterVolumeLevelScalar(FLOAT* target) override { return give(scalar, target); }
    HRESULT STDMETHODCALLTYPE SetChannelVolumeLevel(UINT, FLOAT, LPCGUID) override { return result; }
    HRESULT STDMETHODCALLTYPE SetChannelVolumeLevelScalar(UINT, FLOAT, LPCGUID) override { return result; }
    HRESULT STDMETHODCALLTYPE GetChannelVolumeLevel(UINT, FLOAT* target) override { return give(level, target); }
    HRESULT STDMETHODCALLTYPE GetChannelVolumeLevelScalar(UINT, FLOAT* target) override { return give(scalar, target); }
    HRESULT STDMETHODCALLTYPE SetMute(BOOL mute, LPCGUID) override { return give(mute, &muted); }
    HRESULT STDMETHODCALLTYPE GetMute(BOOL* target) override { return give(muted, target); }
    HRESULT STDMETHODCALLTYPE GetVolumeStepInfo(UINT*, UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE VolumeStepUp(LPCGUID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE VolumeStepDown(LPCGUID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryHardwareSupport(DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetVolumeRange(FLOAT*, FLOAT*, FLOAT*) override { return result; }

    HRESULT result = S_OK;
    UINT channels = 0;
    FLOAT level = 0.0f;
    FLOAT scalar = 0.0f;
    BOOL muted = FALSE;

private:
    template<class Value>
    HRESULT give(Value value, Value* target)
    {
        *target = value;
        return result;
    }
};

class ScriptedVolumeLevel final : public StackObject<IAudioVolumeLevel>
{
public:
    HRESULT STDMETHODCALLTYPE GetChannelCount(UINT* count) override
    {
        *count = channels;
        return result;
    }

    HRESULT STDMETHODCALLTYPE GetLevelRange(UINT, float* low, float* high, float* step) override
    {
        *low = minimum;
        *high = maximum;
        *step = 1.0f;
        return result;
    }

    HRESULT STDMETHODCALLTYPE GetLevel(UINT, float* target) override
    {
        *target = level;
        return result;
    }

    HRESULT STDMETHODCALLTYPE SetLevel(UINT, float, LPCGUID) override { return result; }
    HRESULT STDMETHODCALLTYPE SetLevelUniform(float, LPCGUID) override { return result; }
    HRESULT STDMETHODCALLTYPE SetLevelAllChannels(float*, ULONG, LPCGUID) override { return result; }

    HRESULT result = S_OK;
    UINT channels = 0;
    float minimum = 0.0f;
    float maximum = 0.0f;
    float level = 0.0f;
};

class ScriptedMute final : public StackObject<IAudioMute>
{
public:
    HRESULT STDMETHODCALLTYPE SetMute(BOOL mute, LPCGUID) override
    {
        muted = mute;
        return result;
    }

    HRESULT STDMETHODCALLTYPE GetMute(BOOL* target) override
    {
        *target = muted;
        return result;
    }

    HRESULT result = S_OK;
    BOOL muted = FALSE;
};
}
