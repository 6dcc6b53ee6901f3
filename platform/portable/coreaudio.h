/// @file
/// All of the platform for hosts without the Windows SDK: one header per interface family, gathered here.
///
/// Names, parameters, layouts and the order of the virtual functions are those of the SDK. Everything is declared, also
/// what this library never calls, because the position of an operation in its interface is part of the contract.
#pragma once

#include "platform/portable/audioclient.h"
#include "platform/portable/audioservices.h"
#include "platform/portable/basefilter.h"
#include "platform/portable/basetypes.h"
#include "platform/portable/comruntime.h"
#include "platform/portable/devicetopology.h"
#include "platform/portable/endpointvolume.h"
#include "platform/portable/guid.h"
#include "platform/portable/jackdescription.h"
#include "platform/portable/ksnodetypes.h"
#include "platform/portable/mmdevice.h"
#include "platform/portable/multimedia.h"
#include "platform/portable/partcontrols.h"
#include "platform/portable/propertykeys.h"
#include "platform/portable/propertystore.h"
#include "platform/portable/results.h"
#include "platform/portable/unknown.h"
#include "platform/portable/waveformat.h"
#include "platform/portable/windowing.h"
