/// @file
/// All levels, mutes, hardware controls and selections, to keep in a file and to put back.
#pragma once

#include "sonavit/control.h"
#include "sonavit/endpoint.h"
#include "sonavit/export.h"
#include "sonavit/problem.h"
#include "sonavit/reference.h"
#include "sonavit/result.h"
#include "sonavit/volume.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// The levels, mutes, hardware controls and selections of a computer, see System::settings() and System::restore().
///
/// Plain members, which a program may also fill or remove itself: what has no value, or is not in a list, is left as it
/// is by restore().
class SONAVIT_CLIENT_API Settings
{
public:
    struct ControlSetting
    {
        std::string id;   ///< ControlId
        std::string name; ///< Control::title(), by which it is found if the endpoint has no control with that id now
        std::vector<std::optional<Decibels>> channels;
        std::optional<bool> isMuted;
    };

    struct SelectorSetting
    {
        std::string id; ///< SelectorId
        std::string name;
        std::optional<std::uint32_t> input;
        /// The input is the one with this name and that number; if there is none, the one with this name. The number
        /// alone decides if there is no name here, or if the selector has another name now, as in another language.
        std::string inputName;
    };

    struct EndpointSetting
    {
        std::string name;         ///< for the reader of the file
        std::optional<Flow> flow; ///< for the reader of the file, and for programs that restore only some endpoints
        std::string reference;    ///< Reference::text(), by which the endpoint is found
        std::vector<std::optional<Decibels>> channels;
        std::optional<Decibels> master; ///< used if there is no channel, or if there are more or fewer channels now
        std::optional<bool> isMuted;
        /// A control that acts on several endpoints is saved once, at the one to whose jack it is nearest. Where a
        /// control implements the volume of the endpoint, restore() leaves it at that volume.
        std::vector<ControlSetting> controls;
        std::vector<SelectorSetting> selectors; ///< of its card, at the first endpoint of each card
    };

    std::vector<EndpointSetting> endpoints;

    /// Reads what text() writes, so that parse(text()) == *this if all references can be read. Members that this
    /// version does not know are ignored, unless the name of one is nearly that of a known member; a byte order mark is
    /// ignored, too. A member that is null has no value.
    /// @return Problem::Kind::unreadable with line and reason if @p text is none or contains a reference that is none,
    /// is larger than 16 MiB, has more than 200,000 values, or nests lists and objects deeper than 64 levels;
    /// Problem::object() is empty
    static Result<Settings> parse(std::string_view text);
    /// JSON that a person can read and change, with a comment on how: one setting a line, levels in decibels, ids last.
    /// Levels that are not finite are left out, and ill-formed UTF-8 becomes U+FFFD.
    std::string text() const;
};

SONAVIT_CLIENT_API bool operator==(const Settings::ControlSetting& left, const Settings::ControlSetting& right);
SONAVIT_CLIENT_API bool operator==(const Settings::SelectorSetting& left, const Settings::SelectorSetting& right);
SONAVIT_CLIENT_API bool operator==(const Settings::EndpointSetting& left, const Settings::EndpointSetting& right);
SONAVIT_CLIENT_API bool operator==(const Settings& left, const Settings& right);
inline bool operator!=(const Settings& left, const Settings& right)
{
    return !(left == right);
}

/// What became of one setting.
struct RestoredSetting
{
    enum class Outcome : int
    {
        restored,  ///< as near as the steps of the hardware allow
        unchanged, ///< it was so already, or is no nearer now: no level is another one than before
        notFound,  ///< there is no such endpoint, control, selector or input now, it is ambiguous, or it has no level
        failed     ///< the platform refused, a failing call may hide it, or the level is outside the range
    };

    std::string what; ///< "Speakers (Analog Audio): volume"
    Outcome outcome = Outcome::restored;
    std::optional<Problem> problem = {}; ///< of notFound and failed
    /// Candidate::reason if the endpoint was not recognised by its id: "same device in another USB port"; else empty.
    std::string recognition = {};
};

/// What System::restore() has done.
struct RestoreReport
{
    std::vector<RestoredSetting> settings; ///< in the order of the file

    /// Whether nothing is notFound or failed.
    SONAVIT_CLIENT_API bool isComplete() const noexcept;
    /// One line for a person: "5 restored, 12 unchanged, 1 not found".
    SONAVIT_CLIENT_API std::string sentence() const;
};

SONAVIT_CLIENT_API const char* keyOf(RestoredSetting::Outcome outcome) noexcept;
}
}
