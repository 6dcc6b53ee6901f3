#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "tools/sonavit/nodekind.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// One endpoint with the facts by which people know it; what cannot be read has no value.
struct Endpoint
{
    AudioDevice device;
    EDataFlow flow = eRender;
    std::string id;                          ///< empty for a device that does not report it
    std::optional<std::string> description;  ///< "Speakers"
    std::optional<std::string> friendlyName; ///< of the device it belongs to: "Analog Audio"
    std::optional<GUID> jackType;
    std::optional<unsigned> state; ///< DEVICE_STATE_ bits; none has no value

    std::optional<HRESULT> failure; ///< why neither id nor name can be read, if the platform fails

    /// "Speakers (Analog Audio)", as the system's own dialogs show it.
    std::optional<std::string> name() const;
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

/// "render" and "capture".
std::string flowKey(EDataFlow flow);

/// "notPresent"; no value for a state that is not one of the four.
std::optional<std::string> stateKey(const std::optional<unsigned>& state);

Endpoint readEndpoint(const AudioDevice& device, EDataFlow flow);

/// All endpoints of the system: outputs first. Throws OperationFailure if the system cannot list them.
std::vector<Endpoint> readEndpoints();

/// The endpoints of one flow, as @p enumerator lists them; a platform that fails gives an empty list.
std::vector<Endpoint> readEndpoints(const libSonavit::EndpointDeviceEnumerator& enumerator, EDataFlow flow);

/// All cards of the system, with all endpoints. Throws OperationFailure if the system cannot list them.
std::vector<Card> readCards();

/// Whether @p endpoint is the default of its flow for the console role.
bool isDefault(const Endpoint& endpoint);
}
