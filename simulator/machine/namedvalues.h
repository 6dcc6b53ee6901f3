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
