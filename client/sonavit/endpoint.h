/// @file
/// One endpoint: what a program plays to or records from.
#pragma once

#include "sonavit/export.h"
#include "sonavit/format.h"
#include "sonavit/ids.h"
#include "sonavit/jack.h"
#include "sonavit/nodekind.h"
#include "sonavit/problem.h"
#include "sonavit/volume.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// Which way the sound goes.
enum class Flow : int
{
    output, ///< the platform calls it render
    input   ///< the platform calls it capture
};

/// Whether an endpoint can be used, as IMMDevice::GetState reports it.
enum class State : int
{
    active,     ///< can be used now
    disabled,   ///< switched off by the user
    notPresent, ///< its device is not there, or its driver has withdrawn it
    unplugged   ///< its device is there, but nothing is plugged into the jack
};

/// For what the user has chosen a default endpoint.
enum class Role : int
{
    console, ///< games, system sounds and voice commands
    multimedia,
    communications
};

inline constexpr std::array<Flow, 2> allFlows = {Flow::output, Flow::input};
inline constexpr std::array<Role, 3> allRoles = {Role::console, Role::multimedia, Role::communications};

/// The roles for which an endpoint is the default of its flow.
class SONAVIT_CLIENT_API Roles
{
public:
    bool contains(Role role) const noexcept;
    bool isEmpty() const noexcept { return m_bits == 0; }
    Roles& add(Role role) noexcept;
    /// In the order of Role.
    std::vector<Role> list() const;

    friend bool operator==(Roles left, Roles right) noexcept { return left.m_bits == right.m_bits; }
    friend bool operator!=(Roles left, Roles right) noexcept { return left.m_bits != right.m_bits; }

private:
    unsigned m_bits = 0;
};

/// Names the parts of an Endpoint, for problems and changes.
enum class EndpointField : int
{
    id,
    description,
    interfaceName,
    flow,
    state,
    roles,
    jacks,
    volume,
    format,
    speakers,
    waveId,
    directSoundId,
    driverNode,
    container,
    instancePath,
    incarnation,
    problems
};

/// Something about an endpoint that could not be read.
struct EndpointProblem
{
    EndpointField field = EndpointField::id;
    Problem problem;
};

/// One endpoint, as it was when it was read last.
///
/// A small value that shares its content with its copies; it never changes. References that its operations return are
/// valid as long as a copy of the endpoint is: keep the endpoint in a variable before you loop over its jacks. What was
/// moved from can be assigned to and destroyed, and nothing else.
///
/// What an endpoint does not have, or what could not be read, has no value; problemWith() distinguishes the two. What
/// an endpoint of that state cannot have, such as the volume of one that is not present, is no problem. Roles and wave
/// ids are read for the computer as a whole: what fails there is in Snapshot::problems(). Any thread may use it; no
/// operation calls the platform.
class SONAVIT_CLIENT_API Endpoint
{
public:
    /// All that an endpoint consists of, for code that makes endpoints, such as tests.
    struct Content
    {
        EndpointId id;
        std::optional<std::string> description;
        std::optional<std::string> interfaceName;
        Flow flow = Flow::output;
        std::optional<State> state;
        Roles roles;
        std::vector<Jack> jacks;
        std::optional<Volume> volume;
        std::optional<Format> format;
        std::optional<std::uint32_t> speakers;
        std::optional<std::uint32_t> waveId;
        std::optional<Guid> directSoundId;
        std::optional<std::string> driverNode;
        std::optional<Guid> container;
        std::optional<std::string> instancePath;
        std::uint32_t incarnation = 0;
        std::vector<EndpointProblem> problems;
    };

    /// An output without id and name.
    Endpoint();
    explicit Endpoint(const Content& content);
    explicit Endpoint(Content&& content);
    const Content& content() const& noexcept { return *m_content; }
    Content content() && { return *m_content; }

    const EndpointId& id() const noexcept { return m_content->id; }
    /// For a person, never empty, on one line: name(), or "unnamed output" with the id. Characters that control a
    /// terminal are replaced.
    std::string title() const;
    /// "Speakers (Analog Audio)", as the system's own dialogs show it: description and interface name, or the one that
    /// there is.
    std::optional<std::string> name() const;
    /// PKEY_Device_DeviceDesc: "Speakers"; the user can change it.
    const std::optional<std::string>& description() const noexcept { return m_content->description; }
    /// Name of the device that the endpoint belongs to, "Analog Audio": the property that the system's own dialogs
    /// show.
    const std::optional<std::string>& interfaceName() const noexcept { return m_content->interfaceName; }
    Flow flow() const noexcept { return m_content->flow; }
    /// No value for a state that the platform fails to report, or that is none of the four.
    std::optional<State> state() const noexcept { return m_content->state; }
    bool isActive() const noexcept { return m_content->state == State::active; }
    /// The roles for which it is the default of its flow, as far as the platform reports that; see
    /// Snapshot::defaultEndpoint() and Snapshot::problemWithDefault().
    Roles roles() const noexcept { return m_content->roles; }
    /// The jacks behind it, at least one if the kind or the form factor is known. Several belong to one output with
    /// many channels.
    const std::vector<Jack>& jacks() const& noexcept { return m_content->jacks; }
    std::vector<Jack> jacks() && { return m_content->jacks; }
    /// The kind of its first jack; no value if it is not known.
    std::optional<NodeKind> jackKind() const noexcept;
    /// What IAudioEndpointVolume reports. No value without a volume control, as on endpoints that are neither active
    /// nor unplugged.
    const std::optional<Volume>& volume() const& noexcept { return m_content->volume; }
    std::optional<Volume> volume() && { return m_content->volume; }
    /// PKEY_AudioEngine_DeviceFormat, the format in which the engine plays or records what applications share.
    const std::optional<Format>& format() const noexcept { return m_content->format; }
    /// PKEY_AudioEndpoint_PhysicalSpeakers, those that the user has set up, a mask as Format::speakers; see
    /// speakerWords().
    std::optional<std::uint32_t> speakers() const noexcept { return m_content->speakers; }
    /// The device number of the old wave functions: of waveOut for outputs, of waveIn for inputs. No value if none of
    /// the numbers is that of this endpoint, as waveOutMessage(DRV_QUERYFUNCTIONINSTANCEID) reports it.
    std::optional<std::uint32_t> waveId() const noexcept { return m_content->waveId; }
    /// PKEY_AudioEndpoint_GUID, under which DirectSound lists it.
    const std::optional<Guid>& directSoundId() const noexcept { return m_content->directSoundId; }
    /// The strong name of its driver node.
    const std::optional<std::string>& driverNode() const noexcept { return m_content->driverNode; }
    /// PKEY_Device_ContainerId: what belongs to one thing, such as a headset, has one container; isInternalContainer()
    /// is that of the computer.
    const std::optional<Guid>& container() const noexcept { return m_content->container; }
    /// The instance path of its device: "{1}.USB\VID_1235&PID_8210\000001".
    const std::optional<std::string>& instancePath() const noexcept { return m_content->instancePath; }
    /// How often it has vanished and come back since its System has begun to watch, which it does with its first
    /// snapshot.
    std::uint32_t incarnation() const noexcept { return m_content->incarnation; }

    /// All that could not be read.
    const std::vector<EndpointProblem>& problems() const& noexcept { return m_content->problems; }
    std::vector<EndpointProblem> problems() && { return m_content->problems; }
    /// Why @p field has no value, or lacks a part of it: the first of its problems. No value if it was read or if the
    /// endpoint has no such thing. Volume and jacks of an endpoint whose state cannot be read are not asked for: they
    /// have the problem with the state. See problems() for all of them.
    std::optional<Problem> problemWith(EndpointField field) const;

private:
    std::shared_ptr<const Content> m_content;
};

SONAVIT_CLIENT_API bool operator==(const EndpointProblem& left, const EndpointProblem& right);
/// Compares the whole content.
SONAVIT_CLIENT_API bool operator==(const Endpoint& left, const Endpoint& right);
inline bool operator!=(const EndpointProblem& left, const EndpointProblem& right)
{
    return !(left == right);
}
inline bool operator!=(const Endpoint& left, const Endpoint& right)
{
    return !(left == right);
}

/// "render" and "capture", "notPresent", "console", "directSoundId": as in JSON and in machine files.
SONAVIT_CLIENT_API const char* keyOf(Flow flow) noexcept;
SONAVIT_CLIENT_API const char* keyOf(State state) noexcept;
SONAVIT_CLIENT_API const char* keyOf(Role role) noexcept;
SONAVIT_CLIENT_API const char* keyOf(EndpointField field) noexcept;
/// "output", "not present", "DirectSound id": for people.
SONAVIT_CLIENT_API const char* wordsOf(Flow flow) noexcept;
SONAVIT_CLIENT_API const char* wordsOf(State state) noexcept;
SONAVIT_CLIENT_API const char* wordsOf(Role role) noexcept;
SONAVIT_CLIENT_API const char* wordsOf(EndpointField field) noexcept;

/// Whether that container is the computer itself: of what is built in, {00000000-0000-0000-FFFF-FFFFFFFFFFFF}.
SONAVIT_CLIENT_API bool isInternalContainer(const Guid& container) noexcept;

SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Flow flow);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, State state);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Role role);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Roles roles);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, EndpointField field);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const EndpointProblem& problem);
/// All fields with a value, on one line.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Endpoint& endpoint);
}
}
