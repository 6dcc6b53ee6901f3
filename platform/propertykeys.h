/// @file
/// Keys of the properties of endpoints and devices, under names of our own: the SDK has no names for some of them, and
/// declares the others as constants that each program must define.
#pragma once

#include "platform/coreaudio.h"

namespace platform
{
namespace propertykeys
{
/// Description of the device, a string: "Speakers".
inline constexpr PROPERTYKEY deviceDescription = {
    {0xA45C254E, 0xDF1C, 0x4EFD, {0x80, 0x20, 0x67, 0xD1, 0x46, 0xA8, 0x50, 0xE0}}, 2};

/// Description and name of the device, a string: "Speakers (Analog Audio)".
inline constexpr PROPERTYKEY fullName = {{0xA45C254E, 0xDF1C, 0x4EFD, {0x80, 0x20, 0x67, 0xD1, 0x46, 0xA8, 0x50, 0xE0}},
                                         14};

/// Name of the bus that the device is on, a string: "HDAUDIO", "USB".
inline constexpr PROPERTYKEY enumeratorName = {
    {0xA45C254E, 0xDF1C, 0x4EFD, {0x80, 0x20, 0x67, 0xD1, 0x46, 0xA8, 0x50, 0xE0}}, 24};

/// Container of the device before anything overrode it, a GUID.
inline constexpr PROPERTYKEY baseContainerId = {
    {0xA45C254E, 0xDF1C, 0x4EFD, {0x80, 0x20, 0x67, 0xD1, 0x46, 0xA8, 0x50, 0xE0}}, 38};

/// Container of the device, a GUID: devices in the same container are parts of one physical thing.
inline constexpr PROPERTYKEY containerId = {
    {0x8C7ED206, 0x3F8A, 0x4827, {0xB3, 0xAB, 0xAE, 0x9E, 0x1F, 0xAE, 0xFC, 0x6C}}, 2};

/// Instance id of an adapter's device, a string: "USB\VID_1235&PID_8210\000001".
inline constexpr PROPERTYKEY instanceId = {
    {0x78C34FC8, 0x104A, 0x4ACA, {0x9E, 0xA4, 0x52, 0x4D, 0x52, 0x99, 0x6E, 0x57}}, 256};

/// Id of the adapter that an endpoint is connected to, a string.
inline constexpr PROPERTYKEY interfacePath = {
    {0x233164C8, 0x1B2C, 0x4C7D, {0xBC, 0x68, 0xB6, 0x71, 0x68, 0x7A, 0x25, 0x67}}, 1};

/// What kind of thing the endpoint is, a number: an EndpointFormFactor.
inline constexpr PROPERTYKEY formFactor = {
    {0x1DA5D803, 0xD492, 0x4EDD, {0x8C, 0x23, 0xE0, 0xC0, 0xFF, 0xEE, 0x7F, 0x0E}}, 0};

/// Category of the adapter's connector that the endpoint belongs to, a GUID written as a string.
inline constexpr PROPERTYKEY association = {
    {0x1DA5D803, 0xD492, 0x4EDD, {0x8C, 0x23, 0xE0, 0xC0, 0xFF, 0xEE, 0x7F, 0x0E}}, 2};

/// Kind of the endpoint's jack, a GUID written as a string.
inline constexpr PROPERTYKEY jackSubType = {
    {0x1DA5D803, 0xD492, 0x4EDD, {0x8C, 0x23, 0xE0, 0xC0, 0xFF, 0xEE, 0x7F, 0x0E}}, 8};

/// Device instance path, a string: "{1}.USB\VID_1235&PID_8210\000001".
inline constexpr PROPERTYKEY instancePath = {
    {0xB3F8FA53, 0x0004, 0x438E, {0x90, 0x03, 0x51, 0xA4, 0x6E, 0x13, 0x9B, 0xFC}}, 2};

/// Friendly name of the device that the endpoint belongs to, a string.
inline constexpr PROPERTYKEY friendlyName = {
    {0xB3F8FA53, 0x0004, 0x438E, {0x90, 0x03, 0x51, 0xA4, 0x6E, 0x13, 0x9B, 0xFC}}, 6};

/// Strong name of the driver node, a string.
inline constexpr PROPERTYKEY driverNodeStrongName = {
    {0x83DA6326, 0x97A6, 0x4088, {0x94, 0x53, 0xA1, 0x92, 0x3F, 0x57, 0x3B, 0x29}}, 3};

/// Physical speakers of the endpoint, a 32-bit mask.
inline constexpr PROPERTYKEY physicalSpeakers = {
    {0x1DA5D803, 0xD492, 0x4EDD, {0x8C, 0x23, 0xE0, 0xC0, 0xFF, 0xEE, 0x7F, 0x0E}}, 3};

/// DirectSound GUID of the endpoint, a GUID written as a string.
inline constexpr PROPERTYKEY directSoundGuid = {
    {0x1DA5D803, 0xD492, 0x4EDD, {0x8C, 0x23, 0xE0, 0xC0, 0xFF, 0xEE, 0x7F, 0x0E}}, 4};

/// Format in which the endpoint's engine works, a blob that contains one WAVEFORMATEXTENSIBLE.
inline constexpr PROPERTYKEY deviceFormat = {
    {0xF19F064D, 0x082C, 0x4E27, {0xBC, 0x73, 0x68, 0x82, 0xA1, 0xBB, 0x8E, 0x4C}}, 0};
}
}
