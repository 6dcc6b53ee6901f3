/// @file
/// One sound card: the endpoints that belong to one device.
#pragma once

#include "sonavit/endpoint.h"
#include "sonavit/export.h"
#include "sonavit/ids.h"
#include "sonavit/problem.h"

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
/// One sound card.
///
/// Endpoints with the same instance path are one card. Those without one are grouped by their container, unless that is
/// the computer itself or null; else by the adapter that they are joined to; else each is a card of its own.
///
/// A small value that shares its content with its copies; it never changes. References that its operations return are
/// valid as long as a copy of the card is. Any thread may use it. What was moved from can be assigned to and destroyed,
/// and nothing else.
///
/// No operation calls the platform. Most of what a card knows comes from the properties of its endpoints.
class SONAVIT_CLIENT_API Card
{
public:
    /// All that a card consists of, for code that makes cards, such as tests.
    struct Content
    {
        CardId id;
        std::optional<std::string> instancePath;
        std::optional<std::string> instanceId;
        std::optional<std::string> parent;
        std::optional<Guid> container;
        std::optional<std::string> bus;
        std::string title;
        std::vector<Endpoint> endpoints;
        std::vector<Problem> problems;
    };

    /// A card without id, named "Unnamed card", and without endpoints.
    Card();
    explicit Card(Content content);
    const Content& content() const& noexcept { return *m_content; }
    Content content() && { return *m_content; }

    const CardId& id() const noexcept { return m_content->id; }
    /// For a person, never empty: the name of its device, as Endpoint::interfaceName() of the first endpoint that knows
    /// it. It is on one line: characters that control a terminal are replaced.
    const std::string& title() const& noexcept { return m_content->title; }
    std::string title() && { return m_content->title; }
    /// What its endpoints share: "{1}.USB\VID_1235&PID_8210\000001". No value for endpoints without one.
    const std::optional<std::string>& instancePath() const noexcept { return m_content->instancePath; }
    /// The instance id of its device, which the path contains: "USB\VID_1235&PID_8210\000001".
    const std::optional<std::string>& instanceId() const noexcept { return m_content->instanceId; }
    /// The instance id of the device that it is a part of, or that it is attached to, as the configuration manager
    /// reports it (CM_Get_Parent); no value if that does not know the device.
    const std::optional<std::string>& parent() const noexcept { return m_content->parent; }
    /// The container that all of its endpoints share; endpoints whose container cannot be read do not count.
    const std::optional<Guid>& container() const noexcept { return m_content->container; }
    /// The bus that it is on: "HDAUDIO", "USB".
    const std::optional<std::string>& bus() const noexcept { return m_content->bus; }
    /// Outputs first, each flow in the system's order. On a temporary it returns a list of its own, so that a loop over
    /// it is safe.
    const std::vector<Endpoint>& endpoints() const& noexcept { return m_content->endpoints; }
    std::vector<Endpoint> endpoints() && { return m_content->endpoints; }
    /// What could not be read of the card itself. Its endpoints have problems of their own.
    const std::vector<Problem>& problems() const& noexcept { return m_content->problems; }
    std::vector<Problem> problems() && { return m_content->problems; }

private:
    std::shared_ptr<const Content> m_content;
};

/// Compares the whole content, endpoints included; two copies of one card are equal at once.
SONAVIT_CLIENT_API bool operator==(const Card& left, const Card& right);
inline bool operator!=(const Card& left, const Card& right)
{
    return !(left == right);
}
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Card& card);
}
}
