/// @file
/// The jacks of an endpoint.
#pragma once

#include "sonavit/export.h"
#include "sonavit/ids.h"
#include "sonavit/nodekind.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

namespace sonavit
{
inline namespace v1
{
/// What an endpoint is, as its driver declares it. The numbers are the platform's; others may occur.
enum class FormFactor : int
{
    remoteNetworkDevice = 0,
    speakers = 1,
    lineLevel = 2,
    headphones = 3,
    microphone = 4,
    headset = 5,
    handset = 6,
    digitalPassthrough = 7,
    spdif = 8,
    digitalDisplay = 9,
    unknown = 10
};

/// Colour of a jack, each part from 0 to 255; black stands for no colour in the platform's descriptions, too.
struct Colour
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    /// "lime green" for the colours that jacks usually have, "#RRGGBB" for any other.
    SONAVIT_CLIENT_API std::string name() const;
};

/// Where the box is that the jack belongs to. The numbers are the platform's; others may occur.
enum class JackPlace : int
{
    primaryBox = 0,
    internal = 1,
    separate = 2,
    other = 3
};

/// Where on that box the jack is. The numbers are the platform's; others may occur.
enum class JackGeometry : int
{
    rear = 1,
    front = 2,
    left = 3,
    right = 4,
    top = 5,
    bottom = 6,
    rearPanel = 7,
    riser = 8,
    insideMobileLid = 9,
    driveBay = 10,
    hdmi = 11,
    outsideMobileLid = 12,
    atapi = 13,
    notApplicable = 14
};

/// What fits into the jack. The numbers are the platform's; others may occur.
enum class JackConnection : int
{
    unknown = 0,
    miniJack = 1, ///< 3.5 mm
    quarterInch = 2,
    atapiInternal = 3,
    rca = 4,
    optical = 5,
    otherDigital = 6,
    otherAnalog = 7,
    multichannelDin = 8,
    xlr = 9,
    rj11Modem = 10,
    combination = 11
};

/// What a port is made of. The numbers are the platform's; others may occur.
enum class JackPort : int
{
    jack = 0,
    integratedDevice = 1,
    both = 2,
    unknown = 3
};

/// One jack. The first member comes from IPart::GetSubType of the adapter's connector or, without such a connector,
/// from the endpoint's properties, the second one from these. All others come from IKsJackDescription, which many
/// drivers do not have. What cannot be read has no value, and Endpoint::problemWith(EndpointField::jacks) says why.
struct Jack
{
    std::optional<Guid> type;              ///< of the connector that the endpoint is joined to
    std::optional<FormFactor> formFactor;  ///< of the endpoint
    std::optional<std::uint32_t> channels; ///< a mask of speaker positions, as Format::speakers
    std::optional<Colour> colour;
    std::optional<JackPlace> place;
    std::optional<JackGeometry> geometry;
    std::optional<JackConnection> connection;
    std::optional<JackPort> port;
    /// Whether something is plugged in, when the endpoint was read last. A jack that cannot sense it reports true.
    std::optional<bool> isConnected;

    /// The kind of type; NodeKind::other without one.
    SONAVIT_CLIENT_API NodeKind kind() const noexcept;
    /// "Headphones, lime green, rear", as far as it is known.
    SONAVIT_CLIENT_API std::string sentence() const;
};

SONAVIT_CLIENT_API bool operator==(const Colour& left, const Colour& right) noexcept;
SONAVIT_CLIENT_API bool operator==(const Jack& left, const Jack& right) noexcept;
inline bool operator!=(const Colour& left, const Colour& right) noexcept
{
    return !(left == right);
}
inline bool operator!=(const Jack& left, const Jack& right) noexcept
{
    return !(left == right);
}
/// Its name.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Colour& colour);
/// All members with a value, on one line.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Jack& jack);

/// "digitalDisplay" and the like, as in JSON; "unknown" for a number without a name.
SONAVIT_CLIENT_API const char* keyOf(FormFactor value) noexcept;
SONAVIT_CLIENT_API const char* keyOf(JackPlace value) noexcept;
SONAVIT_CLIENT_API const char* keyOf(JackGeometry value) noexcept;
SONAVIT_CLIENT_API const char* keyOf(JackConnection value) noexcept;
SONAVIT_CLIENT_API const char* keyOf(JackPort value) noexcept;
/// "rear panel" and the like, for people. Streams write these.
SONAVIT_CLIENT_API const char* wordsOf(FormFactor value) noexcept;
SONAVIT_CLIENT_API const char* wordsOf(JackPlace value) noexcept;
SONAVIT_CLIENT_API const char* wordsOf(JackGeometry value) noexcept;
SONAVIT_CLIENT_API const char* wordsOf(JackConnection value) noexcept;
SONAVIT_CLIENT_API const char* wordsOf(JackPort value) noexcept;
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, FormFactor value);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, JackPlace value);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, JackGeometry value);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, JackConnection value);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, JackPort value);
}
}
