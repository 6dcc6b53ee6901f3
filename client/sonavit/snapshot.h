/// @file
/// All cards of the computer at one moment.
#pragma once

#include "sonavit/card.h"
#include "sonavit/control.h"
#include "sonavit/endpoint.h"
#include "sonavit/export.h"
#include "sonavit/ids.h"
#include "sonavit/problem.h"
#include "sonavit/result.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// Whether the Windows audio service answers.
enum class Service : int
{
    running,
    stopped
};

/// What is read of a card only while it is watched, see System::watch(). A value; any thread may use it.
struct Hardware
{
    /// The controls that act on one endpoint.
    struct EndpointControls
    {
        EndpointId endpoint;
        std::vector<Control> controls; ///< as System::controls() returns them
    };

    CardId card;
    std::vector<EndpointControls> controls; ///< in the order of the card's endpoints
    std::vector<Selector> selectors;        ///< as System::selectors() returns them
    /// What could not be read, apart from the problems of the controls and selectors themselves.
    std::vector<Problem> problems;
};

/// An endpoint with its card.
struct CardEndpoint
{
    Card card;
    Endpoint endpoint;
};

/// By what an id or a number was found, see Snapshot::find().
enum class IdKind : int
{
    endpointId,
    waveId,        ///< Endpoint::waveId()
    directSoundId, ///< Endpoint::directSoundId()
    cardId,
    instanceId, ///< Card::instanceId(), or an instance path
    container,  ///< Endpoint::container()
    parent      ///< Card::parent()
};

/// One endpoint that find() has found, and by what.
struct Match
{
    CardEndpoint place;
    IdKind by = IdKind::endpointId;
};

/// All cards of the computer at one moment.
///
/// A small value that shares its content with its copies; it never changes, and cards that did not change are shared
/// between snapshots. References that its operations return are valid as long as a copy of the snapshot is. Any thread
/// may use it. No operation calls the platform; a search compares with each endpoint. What was moved from can be
/// assigned to and destroyed, and nothing else.
class SONAVIT_CLIENT_API Snapshot
{
public:
    /// All that a snapshot consists of, for code that makes snapshots, such as tests.
    struct Content
    {
        std::vector<Card> cards;
        /// Ids of the defaults, by flow and role; empty if there is none.
        std::array<std::array<EndpointId, 3>, 2> defaults;
        std::vector<Hardware> hardware; ///< of the watched cards
        Service service = Service::running;
        std::vector<Problem> problems;
        std::uint64_t generation = 0;
        std::chrono::system_clock::time_point time;
    };

    /// No cards, at generation 0.
    Snapshot();
    explicit Snapshot(Content content);
    const Content& content() const& noexcept { return *m_content; }
    Content content() && { return *m_content; }

    /// In the order of the platform's list of inputs, followed by those with outputs alone. On a temporary it returns a
    /// list of its own, so that a loop over it is safe.
    const std::vector<Card>& cards() const& noexcept { return m_content->cards; }
    std::vector<Card> cards() && { return m_content->cards; }
    /// All endpoints of all cards, in their order; a list of its own.
    std::vector<Endpoint> endpoints() const;

    // Each of these has no value if there is no such thing. An empty id is that of nothing.

    std::optional<Endpoint> endpoint(const EndpointId& id) const;
    std::optional<Card> card(const CardId& id) const;
    /// The card that the endpoint belongs to.
    std::optional<Card> cardOf(const EndpointId& id) const;
    /// The endpoint that the user, or Windows, has chosen: IMMDeviceEnumerator::GetDefaultAudioEndpoint. If the
    /// platform fails to report it, problemWithDefault() says why.
    std::optional<Endpoint> defaultEndpoint(Flow flow, Role role = Role::console) const;
    /// The one of problems() because of which it is not known which endpoint is that default, so that Endpoint::roles()
    /// of none contains the role. Where nothing could be read, as without the audio service, only problems() says so.
    std::optional<Problem> problemWithDefault(Flow flow, Role role = Role::console) const;
    /// The controls and selectors of a card that is watched.
    std::optional<Hardware> hardware(const CardId& card) const;

    /// The endpoint that a person means by @p text: its whole id, its whole name or description, or a part of one of
    /// them that no other endpoint has; the letters A to Z are equal in both cases. The spelling that is exactly
    /// @p text goes first, then a whole name, then a part.
    /// @param flow considers the endpoints of this flow alone, as many a device has the same name for its output and
    /// its input
    /// @return Problem::Kind::notThere if there is none, Kind::ambiguous with the candidates if there are several,
    /// Kind::platform if it may be one whose names cannot be read
    Result<Endpoint> endpointNamed(std::string_view text, std::optional<Flow> flow = std::nullopt) const;
    /// As endpointNamed(): by the card's id, its instance id, its title, or a part of one of them.
    Result<Card> cardNamed(std::string_view text) const;

    /// All endpoints that @p id identifies, in the order of endpoints(): an endpoint id, a number of the wave functions
    /// in decimal digits, a DirectSound GUID, a card id, an instance id or path, a container, a parent. The same number
    /// of the wave functions is that of an output and of an input. An endpoint that @p id identifies in several ways is
    /// there once, by the first of them in the order of IdKind. Only whole ids count; the letters A to Z are equal in
    /// both cases. Empty if there is none.
    std::vector<Match> find(std::string_view id) const;

    /// Without the audio service there are no cards, and problems() says why.
    Service service() const noexcept { return m_content->service; }
    /// What could not be read of the computer as a whole: a list of endpoints, an entry of it, a default, a number of
    /// the wave functions, the registration for events.
    const std::vector<Problem>& problems() const& noexcept { return m_content->problems; }
    std::vector<Problem> problems() && { return m_content->problems; }
    /// Rises by one with each published change of its System; 0 before the first reading.
    std::uint64_t generation() const noexcept { return m_content->generation; }
    /// When it was published.
    std::chrono::system_clock::time_point time() const noexcept { return m_content->time; }

private:
    std::shared_ptr<const Content> m_content;
};

inline bool operator==(const CardEndpoint& left, const CardEndpoint& right)
{
    return left.card == right.card && left.endpoint == right.endpoint;
}
inline bool operator!=(const CardEndpoint& left, const CardEndpoint& right)
{
    return !(left == right);
}
inline bool operator==(const Match& left, const Match& right)
{
    return left.place == right.place && left.by == right.by;
}
inline bool operator!=(const Match& left, const Match& right)
{
    return !(left == right);
}
SONAVIT_CLIENT_API bool operator==(const Hardware::EndpointControls& left, const Hardware::EndpointControls& right);
SONAVIT_CLIENT_API bool operator==(const Hardware& left, const Hardware& right);
/// Compares all but generation and time.
SONAVIT_CLIENT_API bool operator==(const Snapshot& left, const Snapshot& right);
inline bool operator!=(const Hardware::EndpointControls& left, const Hardware::EndpointControls& right)
{
    return !(left == right);
}
inline bool operator!=(const Hardware& left, const Hardware& right)
{
    return !(left == right);
}
inline bool operator!=(const Snapshot& left, const Snapshot& right)
{
    return !(left == right);
}
/// "endpoint id: " and the endpoint.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Match& match);
/// The titles of both.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const CardEndpoint& place);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Hardware::EndpointControls& controls);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Hardware& hardware);
/// All fields with a value, on one line.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Snapshot& snapshot);

/// "running", "directSoundId": as in JSON.
SONAVIT_CLIENT_API const char* keyOf(Service service) noexcept;
SONAVIT_CLIENT_API const char* keyOf(IdKind kind) noexcept;
/// "running", "DirectSound id": for people. Streams write these.
SONAVIT_CLIENT_API const char* wordsOf(Service service) noexcept;
SONAVIT_CLIENT_API const char* wordsOf(IdKind kind) noexcept;
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Service service);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, IdKind kind);
}
}
