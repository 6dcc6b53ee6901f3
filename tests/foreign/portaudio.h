/// @file
/// Included before each source of PortAudio when tests/foreign/run builds it: its WASAPI source includes the headers of
/// Core Audio for Microsoft's compiler only.
#pragma once

#define COBJMACROS
#define INITGUID
// The order matters: mmreg.h comes before the headers of Core Audio.
// clang-format off
#include <windows.h>
#include <mmreg.h>
#include <avrt.h>
#include <audioclient.h>
#include <endpointvolume.h>
#include <mmdeviceapi.h>
#include <functiondiscoverykeys_devpkey.h>
#include <devicetopology.h>
// clang-format on

#undef interface // a variable of PortAudio
