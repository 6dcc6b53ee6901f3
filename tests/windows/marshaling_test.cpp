// The machine's objects in other apartments than the one that created them.

#include "tests/windows/redirectiontest.h"

using redirectiontest::create;
using redirectiontest::inNewApartment;

namespace
{
class Marshaling : public redirectiontest::RedirectionTest
{
protected:
    /// Passes @p object to a new thread in an apartment of the kind @p model, as COM passes interfaces between threads.
    template<class Interface>
    static Interface* passedTo(DWORD model, Interface* object)
    {
        IStream* stream = nullptr;
        EXPECT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(__uuidof(Interface), object, &stream));
        if (stream == nullptr)
            return nullptr;
        Interface* passed = nullptr;
        inNewApartment(model,
                       [&]
                       {
                           EXPECT_EQ(S_OK, CoGetInterfaceAndReleaseStream(stream, __uuidof(Interface),
                                                                          reinterpret_cast<void**>(&passed)));
                           if (passed != nullptr)
                               passed->Release();
                       });
        return passed;
    }
};
}

// Wine's audio clients and, as PortAudio relies on it, those of Windows: no proxy stands between the threads.
TEST_F(Marshaling, PassesTheObjectItselfToAnyApartment)
{
    IMMDeviceEnumerator* enumerator = nullptr;
    ASSERT_EQ(S_OK, create(&enumerator));
    IMMDevice* device = nullptr;
    ASSERT_EQ(S_OK, enumerator->GetDefaultAudioEndpoint(eRender, eConsole, &device));
    IAudioEndpointVolume* volume = nullptr;
    ASSERT_EQ(S_OK, device->Activate(__uuidof(IAudioEndpointVolume), CLSCTX_INPROC_SERVER, nullptr,
                                     reinterpret_cast<void**>(&volume)));

    for (const DWORD model : {DWORD(COINIT_MULTITHREADED), DWORD(COINIT_APARTMENTTHREADED)})
    {
        EXPECT_EQ(enumerator, passedTo(model, enumerator));
        EXPECT_EQ(device, passedTo(model, device));
        EXPECT_EQ(volume, passedTo(model, volume));
    }

    volume->Release();
    device->Release();
    enumerator->Release();
}
