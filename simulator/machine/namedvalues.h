/// @file
/// The names of the platform's values in machine files, messages and the program's JSON.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/machine.h"
#include "simulator/machine/names.h"

#include <cstdint>

namespace sim
{
inline constexpr Names<Account, 2> accountNames = {
    {{"administrator", Account::administrator}, {"ordinary", Account::ordinary}}};

inline constexpr Names<EDataFlow, 2> flowNames = {{{"render", eRender}, {"capture", eCapture}}};

inline constexpr Names<std::uint32_t, 4> stateNames = {{{"active", stateActive},
                                                        {"disabled", stateDisabled},
                                                        {"notPresent", stateNotPresent},
                                                        {"unplugged", stateUnplugged}}};

inline constexpr Names<ERole, 3> roleNames = {
    {{"console", eConsole}, {"multimedia", eMultimedia}, {"communications", eCommunications}}};

inline constexpr Names<DataFlow, 2> directionNames = {{{"in", In}, {"out", Out}}};

inline constexpr Names<ConnectorType, 6> connectorTypeNames = {{{"unknown", Unknown_Connector},
                                                                {"physicalInternal", Physical_Internal},
                                                                {"physicalExternal", Physical_External},
                                                                {"softwareIo", Software_IO},
                                                                {"softwareFixed", Software_Fixed},
                                                                {"network", Network}}};

inline constexpr Names<NotPresentNames, 2> notPresentNamesNames = {
    {{"readable", NotPresentNames::readable}, {"failing", NotPresentNames::failing}}};

inline constexpr Names<Composition, 2> compositionNames = {
    {{"usual", Composition::usual}, {"none", Composition::none}}};

inline constexpr Names<EPcxConnectionType, 12> jackConnectionNames = {
    {{"unknown", eConnTypeUnknown},
     {"3.5mm jack", eConnType3Point5mm},
     {"quarter inch jack", eConnTypeQuarter},
     {"ATAPI internal", eConnTypeAtapiInternal},
     {"RCA", eConnTypeRCA},
     {"optical", eConnTypeOptical},
     {"other digital", eConnTypeOtherDigital},
     {"other analog", eConnTypeOtherAnalog},
     {"multichannel DIN", eConnTypeMultichannelAnalogDIN},
     {"XLR", eConnTypeXlrProfessional},
     {"RJ11 modem", eConnTypeRJ11Modem},
     {"combination", eConnTypeCombination}}};

/// The SDKs have no common name for the last one.
inline constexpr Names<EPcxGeoLocation, 14> geometricLocationNames = {
    {{"rear", eGeoLocRear},
     {"front", eGeoLocFront},
     {"left", eGeoLocLeft},
     {"right", eGeoLocRight},
     {"top", eGeoLocTop},
     {"bottom", eGeoLocBottom},
     {"rear panel", eGeoLocRearPanel},
     {"riser", eGeoLocRiser},
     {"inside mobile lid", eGeoLocInsideMobileLid},
     {"drive bay", eGeoLocDrivebay},
     {"HDMI", eGeoLocHDMI},
     {"outside mobile lid", eGeoLocOutsideMobileLid},
     {"ATAPI", eGeoLocATAPI},
     {"not applicable", static_cast<EPcxGeoLocation>(14)}}};

inline constexpr Names<EPcxGenLocation, 4> generalLocationNames = {{{"primary box", eGenLocPrimaryBox},
                                                                    {"internal", eGenLocInternal},
                                                                    {"separate", eGenLocSeparate},
                                                                    {"other", eGenLocOther}}};

inline constexpr Names<EPxcPortConnection, 4> portConnectionNames = {{{"jack", ePortConnJack},
                                                                      {"integrated device", ePortConnIntegratedDevice},
                                                                      {"both", ePortConnBothIntegratedAndJack},
                                                                      {"unknown", ePortConnUnknown}}};

inline constexpr Names<Taper, 3> taperNames = {
    {{"linear", Taper::linear}, {"audio", Taper::audio}, {"measured", Taper::measured}}};

/// Interfaces of controls that the machine lists and does not answer for.
inline constexpr Names<GUID, 9> controlInterfaceNames = {
    {{"IAudioAutoGainControl", {0x85401FD4, 0x6DE4, 0x4B9D, {0x98, 0x69, 0x2D, 0x67, 0x53, 0xA8, 0x2F, 0x3C}}},
     {"IAudioLoudness", {0x7D8B1437, 0xDD53, 0x4350, {0x9C, 0x1B, 0x1E, 0xE2, 0x89, 0x0B, 0xF9, 0x38}}},
     {"IAudioPeakMeter", {0xDD79923C, 0x0599, 0x45E0, {0xB8, 0xB6, 0xC8, 0xDF, 0x7D, 0xB6, 0xE7, 0x96}}},
     {"IAudioBass", {0xA2B1A1D9, 0x4DB3, 0x425D, {0xA2, 0xB2, 0xBD, 0x33, 0x5C, 0xB3, 0xE2, 0xE5}}},
     {"IAudioMidrange", {0x5E54B6D7, 0xB44B, 0x40D9, {0x9A, 0x9E, 0xE6, 0x91, 0xD9, 0xCE, 0x6E, 0xDF}}},
     {"IAudioTreble", {0x0A717812, 0x694E, 0x4907, {0xB7, 0x4B, 0xBA, 0xFA, 0x5C, 0xFD, 0xCA, 0x7B}}},
     {"IAudioChannelConfig", {0xBB11C46F, 0xEC28, 0x493C, {0xB8, 0x8A, 0x5D, 0xB8, 0x80, 0x62, 0xCE, 0x98}}},
     {"IKsFormatSupport", {0x3CB4A69D, 0xBB6F, 0x4D2B, {0x95, 0xB7, 0x45, 0x2D, 0x2C, 0x15, 0x5D, 0xB5}}},
     {"IDeviceSpecificProperty", {0x3B22BCBF, 0x2586, 0x4AF0, {0x85, 0x83, 0x20, 0x5D, 0x39, 0x1B, 0x80, 0x7C}}}}};

inline constexpr Names<std::uint32_t, 3> hardwareSupportNames = {{{"volume", 1}, {"mute", 2}, {"meter", 4}}};

inline constexpr Names<ScriptEvent::Kind, 17> eventNames = {{{"added", ScriptEvent::Kind::added},
                                                             {"removed", ScriptEvent::Kind::removed},
                                                             {"plugged", ScriptEvent::Kind::plugged},
                                                             {"unplugged", ScriptEvent::Kind::unplugged},
                                                             {"stateChanged", ScriptEvent::Kind::stateChanged},
                                                             {"defaultChanged", ScriptEvent::Kind::defaultChanged},
                                                             {"volumeChanged", ScriptEvent::Kind::volumeChanged},
                                                             {"propertyChanged", ScriptEvent::Kind::propertyChanged},
                                                             {"plugUsb", ScriptEvent::Kind::plugUsb},
                                                             {"unplugUsb", ScriptEvent::Kind::unplugUsb},
                                                             {"plugJack", ScriptEvent::Kind::plugJack},
                                                             {"unplugJack", ScriptEvent::Kind::unplugJack},
                                                             {"wake", ScriptEvent::Kind::wake},
                                                             {"driverUpdate", ScriptEvent::Kind::driverUpdate},
                                                             {"serviceStop", ScriptEvent::Kind::serviceStop},
                                                             {"serviceStart", ScriptEvent::Kind::serviceStart},
                                                             {"remoteLogon", ScriptEvent::Kind::remoteLogon}}};

inline constexpr Names<CaptureAccess, 2> captureAccessNames = {
    {{"allowed", CaptureAccess::allowed}, {"denied", CaptureAccess::denied}}};

inline constexpr Names<bool Device::*, 3> interfaceNames = {{{"IAudioClient", &Device::hasAudioClient},
                                                             {"IBaseFilter", &Device::hasBaseFilter},
                                                             {"IAudioMeterInformation", &Device::hasMeter}}};

inline constexpr Names<RemovedEndpoints, 2> removedEndpointsNames = {
    {{"open", RemovedEndpoints::open}, {"unknown", RemovedEndpoints::unknown}}};

inline constexpr Names<CallbackThread, 2> callbackThreadNames = {
    {{"com", CallbackThread::com}, {"bare", CallbackThread::bare}}};

inline constexpr Names<LatencyPreset, 2> latencyPresetNames = {
    {{"none", LatencyPreset::none}, {"windows", LatencyPreset::windows}}};

/// The tags of a property value that is a whole number. A property store of the simulated platform takes all of them.
inline constexpr Names<VARTYPE, 12> numberTagNames = {{{"VT_I2", VT_I2},
                                                       {"VT_I4", VT_I4},
                                                       {"VT_BOOL", VT_BOOL},
                                                       {"VT_I1", VT_I1},
                                                       {"VT_UI1", VT_UI1},
                                                       {"VT_UI2", VT_UI2},
                                                       {"VT_UI4", VT_UI4},
                                                       {"VT_UI8", VT_UI8},
                                                       {"VT_INT", VT_INT},
                                                       {"VT_UINT", VT_UINT},
                                                       {"VT_I8", VT_I8},
                                                       {"VT_FILETIME", VT_FILETIME}}};
}
