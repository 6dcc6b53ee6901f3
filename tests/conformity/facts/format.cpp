// The format in which an endpoint's engine works, as its property store has it.
#include "platform/propertykeys.h"
#include "tests/conformity/fact.h"
#include "tests/conformity/store.h"
#include "tests/conformity/system.h"

#include <cstring>

namespace conformity
{
namespace
{
/// Calls @p action with the device format of each active endpoint whose store can be read.
void eachFormat(System& system, const std::function<void(const EndpointInSystem&, const Value&)>& action)
{
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            if (const Held<IPropertyStore> store = openedStore(*endpoint.device.get()))
                action(endpoint, Value(*store.get(), platform::propertykeys::deviceFormat));
        });
}

/// The first part of the format; zeros if the value is too short.
WAVEFORMATEX fixedPartOf(const Value& value)
{
    WAVEFORMATEX format = {};
    const BLOB& blob = value.variant().blob;
    if (value.tag() == VT_BLOB && blob.cbSize >= sizeof format)
        std::memcpy(&format, blob.pBlobData, sizeof format);
    return format;
}

Finding isFortyBytes(System& system)
{
    Observation observation;
    eachFormat(system,
               [&](const EndpointInSystem& endpoint, const Value& value)
               {
                   if (value.tag() != VT_BLOB)
                       return observation.see(false, "tag " + std::to_string(value.tag()), endpoint.name);
                   const std::string found = std::to_string(value.variant().blob.cbSize) + " bytes, tag " +
                                             std::to_string(fixedPartOf(value).wFormatTag);
                   observation.see(found == "40 bytes, tag 65534", found, endpoint.name);
               });
    return observation.finding("no active endpoint");
}

Finding isConsistent(System& system)
{
    Observation observation;
    eachFormat(system,
               [&](const EndpointInSystem& endpoint, const Value& value)
               {
                   const WAVEFORMATEX format = fixedPartOf(value);
                   if (format.nChannels == 0)
                       return;
                   const unsigned frame = format.nChannels * format.wBitsPerSample / 8u;
                   const bool isRight =
                       format.nBlockAlign == frame && format.nAvgBytesPerSec == frame * format.nSamplesPerSec;
                   observation.see(isRight, isRight ? "they agree" : "they do not agree", endpoint.name);
               });
    return observation.finding("no endpoint with a format");
}
}

Facts formatFacts()
{
    return {
        {"An active endpoint has a device format of 40 bytes with the extensible tag", "40 bytes, tag 65534",
         "Wine's tests of the property store, run on Windows", isFortyBytes},
        {"Bytes of a frame and of a second follow from channels, bits and rate", "they agree",
         "Microsoft's documentation of WAVEFORMATEX", isConsistent},
    };
}
}
