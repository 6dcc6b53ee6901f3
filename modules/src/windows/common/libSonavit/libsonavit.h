/// The whole public interface of the library.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/audiodeviceinterface.h"
#include "libSonavit/audiodevicetopology.h"
#include "libSonavit/audiopart.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardinterface.h"
#include "libSonavit/soundcardobserver.h"
#include "libSonavit/soundcardupdater.h"
#include "libSonavit/sysinfohelper.h"
#include "libSonavit/volumechangenotification.h"
#include "libSonavit/volumecontroller.h"
