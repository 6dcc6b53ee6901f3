/// @file
/// References to endpoints that survive restarts, other ports and new drivers.
#pragma once

#include "sonavit/endpoint.h"
#include "sonavit/export.h"
#include "sonavit/ids.h"
#include "sonavit/result.h"
#include "sonavit/snapshot.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// What is known of an endpoint, as a text to keep in a file: "snv1:" and at most 507 characters of base64url.
///
/// It contains names and serial numbers of the endpoint and its device: treat it as you treat those. Ids of more than
/// 64 bytes and names and serial numbers of more than 40 are kept as their beginning and a hash, which is enough to
/// recognise them. A value; any thread may use it.
class SONAVIT_CLIENT_API Reference
{
public:
    /// Blanks and line ends around it are ignored. Fields that this version does not know are kept.
    /// @return Problem::Kind::unreadable if @p text is no reference
    static Result<Reference> parse(std::string_view text);

    /// The same text for the same endpoint in the same state of the computer.
    const std::string& text() const noexcept { return m_text; }

private:
    friend SONAVIT_CLIENT_API Result<Reference> refer(const Snapshot& snapshot, const EndpointId& endpoint);
    explicit Reference(std::string text);

    std::string m_text;
};

SONAVIT_CLIENT_API bool operator==(const Reference& left, const Reference& right) noexcept;
inline bool operator!=(const Reference& left, const Reference& right) noexcept
{
    return !(left == right);
}
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Reference& reference);

/// An endpoint that a reference may mean.
struct Candidate
{
    /// By what it was recognised, the most certain first. The flow is always equal, and what is not known is equal to
    /// nothing. Two devices of one model whose serial numbers differ are never taken for each other.
    enum class Evidence : int
    {
        endpointId,
        serialNumber,     ///< serial number, vendor, product and jack
        container,        ///< container (not the computer itself) and jack
        instanceId,       ///< instance id and jack
        vendorAndProduct, ///< vendor, product and jack
        name
    };

    CardEndpoint place;
    Evidence evidence = Evidence::name;
    /// 0 for the best; candidates that fit equally well have the same rank.
    std::size_t rank = 0;
    /// For a person: "same device in another USB port", "same name, other driver".
    std::string reason;
};

/// What a reference means on a computer.
struct Resolution
{
    enum class Kind : int
    {
        exact,     ///< the endpoint with that id
        likely,    ///< one endpoint is recognised better than all others
        ambiguous, ///< several are recognised equally well
        none       ///< no endpoint fits
    };

    Kind kind = Kind::none;
    /// The best first. Of the same evidence, endpoints that are present come before those that are not (State), then
    /// those that have more in common with the reference, then active ones. An endpoint that is present hides those of
    /// weaker evidence; one that is not present does not, so that the caller can use another one meanwhile.
    std::vector<Candidate> candidates;

    /// The endpoint to use: the first candidate that is present, which is not active if it is unplugged or disabled; if
    /// none is present, the first one. No value if there is no candidate, or if several have its rank.
    SONAVIT_CLIENT_API std::optional<CardEndpoint> best() const;
    /// One line for a person.
    SONAVIT_CLIENT_API std::string sentence() const;
};

SONAVIT_CLIENT_API bool operator==(const Candidate& left, const Candidate& right);
SONAVIT_CLIENT_API bool operator==(const Resolution& left, const Resolution& right);
inline bool operator!=(const Candidate& left, const Candidate& right)
{
    return !(left == right);
}
inline bool operator!=(const Resolution& left, const Resolution& right)
{
    return !(left == right);
}

/// A reference to an endpoint of the snapshot.
/// @return Problem::Kind::notThere if the snapshot has no such endpoint
SONAVIT_CLIENT_API Result<Reference> refer(const Snapshot& snapshot, const EndpointId& endpoint);

/// The endpoints of the snapshot that @p reference may mean.
SONAVIT_CLIENT_API Resolution resolve(const Snapshot& snapshot, const Reference& reference);

SONAVIT_CLIENT_API const char* keyOf(Resolution::Kind kind) noexcept;
SONAVIT_CLIENT_API const char* keyOf(Candidate::Evidence evidence) noexcept;
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Resolution& resolution);
}
}
