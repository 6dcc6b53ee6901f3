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
Finding isFortyBytes(System& system)
{
    Observation observation;
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            const Held<IPropertyStore> store = openedStore(*endpoint.device.get());
            if (!store)
                return;
            const Value value(*store.get(), platform::propertykeys::deviceFormat);
            if (value.tag() != VT_BLOB)
                return observation.see(false, "tag " + std::to_string(value.tag()), endpoint.name);
            WAVEFORMATEX format = {};
            const BLOB& blob = value.variant().blob;
            if (blob.cbSize >= sizeof format)
                std::memcpy(&format, blob.pBlobData, sizeof format);
            const std::string found = std::to_string(blob.cbSize) + " bytes, tag " + std::to_string(format.wFormatTag);
            observation.see(found == "40 bytes, tag 65534", found, endpoint.name);
        });
    return observation.finding("no active endpoint");
}

Finding isConsistent(System& system)
{
    Observation observation;
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            const Held<IPropertyStore> store = openedStore(*endpoint.device.get());
            if (!store)
                return;
            const Value value(*store.get(), platform::propertykeys::deviceFormat);
            WAVEFORMATEX format = {};
            if (value.tag() != VT_BLOB || value.variant().blob.cbSize < sizeof format)
                return;
            std::memcpy(&format, value.variant().blob.pBlobData, sizeof format);
            const unsigned frame = format.nChannels * format.wBitsPerSample / 8u;
            const bool isRight = format.nBlockAlign == frame && format.nAvgBytesPerSec == frame * format.nSamplesPerSec;
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
