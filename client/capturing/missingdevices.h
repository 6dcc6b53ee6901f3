/// @file
/// The endpoints that the list of all flows does not give, found in the lists of single flows.
#pragma once

#include "client/capturing/devicelist.h"

namespace sonavit::capturing
{
/// One endpoint of the platform's order.
struct OrderedDevice
{
    ListedDevice item;
    EDataFlow flow = eRender; ///< of an item that is not there
};

/// All endpoints in the platform's order. What the list of all flows does not give is taken from those of single
/// flows; if they do not give it either, an item without device has its place.
std::vector<OrderedDevice> orderedDevices(DeviceLists& lists, Recorder& recorder);
}
