/// @file
/// The format of a device in its property store, byte by byte. All of it runs on the worker.
#pragma once

#include "platform/coreaudio.h"
#include "sonavit/format.h"
#include "sonavit/ids.h"
#include "sonavit/result.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sonavit::changing
{
/// A device format as the store keeps it: a WAVEFORMATEX or a WAVEFORMATEXTENSIBLE, and what a driver adds to it.
using FormatBytes = std::vector<std::uint8_t>;

/// A format as it was read.
struct StoredFormat
{
    FormatBytes bytes;
    Format format;
};

/// The bytes of @p format, in the short form if it has neither speakers nor a sub-format. Problem::Kind::outOfRange if
/// the platform's structure cannot express it.
Result<FormatBytes> bytesOf(const EndpointId& endpoint, const Format& format);

/// Opens the store for reading. Problem::Kind::notSupported if it has no format, or none that can be understood.
Result<StoredFormat> readFormat(IMMDevice& device, const EndpointId& endpoint);

/// A device format that has been set, and the one before it.
class HeldFormat
{
public:
    /// Reads the format, sets @p wanted, and reads it again. If a call fails after the format was set, the former one
    /// is put back. A format that is there already is not written.
    static Result<HeldFormat> hold(IMMDevice& device, const EndpointId& endpoint, const Format& wanted);

    const EndpointId& endpoint() const noexcept { return m_endpoint; }
    const Format& former() const noexcept { return m_former.format; }
    const Format& held() const noexcept { return m_held.format; }
    /// Whether the format is another one than before.
    bool isWritten() const noexcept { return m_former.bytes != m_held.bytes; }

    /// Puts the former bytes back, if the present ones are those that were held.
    Result<Done> putBack(IMMDevice& device) const;

private:
    HeldFormat(EndpointId endpoint, StoredFormat former, StoredFormat held);

    EndpointId m_endpoint;
    StoredFormat m_former;
    StoredFormat m_held;
};
}
