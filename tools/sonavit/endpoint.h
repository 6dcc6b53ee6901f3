#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "tools/sonavit/nodekind.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
/// One endpoint with the facts by which people know it; what could not be read has no value.
struct Endpoint
{
    AudioDevice device;
    EDataFlow flow = eRender;
    std::string id;                          ///< empty for a device that did not tell it
    std::optional<std::string> description;  ///< "Speakers"
    std::optional<std::string> friendlyName; ///< of the device it belongs to: "Analog Audio"
    std::optional<GUID> jackType;
    std::optional<unsigned> state; ///< DEVICE_STATE_ bits; none has no value

    /// "Speakers (Analog Audio)", as the system's own dialogues have it.
    std::optional<std::string> name() const;
    /// name(), or a stand-in for people to read.
    std::string title() const;
};

/// One sound card with its endpoints: outputs first, each group in the system's order.
struct Card
{
    SoundCard card;
    std::string id; ///< the instance path that its endpoints share; may be empty
    std::optional<std::string> instanceId;
    std::string name;
    std::vector<Endpoint> endpoints;
};

/// "render" and "capture", "output" and "input".
const char* flowKey(EDataFlow flow);
const char* flowWords(EDataFlow flow);

/// "notPresent" and "not present"; no value and "-" for a state that is none of the four.
std::optional<std::string> stateKey(const std::optional<unsigned>& state);
std::string stateWords(const std::optional<unsigned>& state);

Endpoint readEndpoint(const AudioDevice& device, EDataFlow flow);

/// All endpoints of the system: outputs first. Throws OperationFailure where the system cannot be asked.
std::vector<Endpoint> readEndpoints();

/// The endpoints of one flow, as @p enumerator lists them.
std::vector<Endpoint> readEndpoints(const libSonavit::EndpointDeviceEnumerator& enumerator, EDataFlow flow);

/// All cards of the system, with all endpoints. Throws OperationFailure where the system cannot be asked.
std::vector<Card> readCards();

/// Whether the system takes @p endpoint where a program names none.
bool isDefault(const Endpoint& endpoint);
}
