/// @file
/// The Windows SDK's headers in the order that they need, and what some SDKs lack or spell in another way.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif

// The base comes first: every other header expects it.
#include <windows.h>

#include <mmsystem.h>
#include <objbase.h>

// strmif.h and ksmedia.h share some structures; only ksmedia.h asks whether they are there already.
#include <strmif.h>

// mmreg.h before ks.h for the wave formats, and ks.h before devicetopology.h, which otherwise declares its structures.
#include <mmreg.h>
#if defined(INITGUID)
#include <ksguid.h> // does for the next two what initguid.h does for all others
#endif
#include <ks.h>

#include <ksmedia.h>

#include <propidl.h>
#include <propsys.h>

#include "platform/windows/devicetopology.h"

#include <audioclient.h>
#include <endpointvolume.h>
#include <mmdeviceapi.h>

#include <functiondiscoverykeys_devpkey.h>

#include "platform/windows/missing.h"
