/// @file
/// What is wrong with the sound hardware of a computer, and why an endpoint is as it is.
#pragma once

#include "sonavit/export.h"
#include "sonavit/ids.h"
#include "sonavit/problem.h"
#include "sonavit/result.h"
#include "sonavit/system.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// Something that is wrong, or odd.
struct SONAVIT_CLIENT_API Finding
{
    enum class Kind : int
    {
        failure, ///< a platform call failed; @ref problem names it
        data,    ///< a call succeeded and returned what cannot be right
        oddity   ///< no error, but often the reason why users see what they do not expect
    };

    Kind kind = Kind::failure;
    /// What it concerns; none: a card, or the whole computer.
    std::optional<EndpointId> endpoint;
    /// The card of the endpoint; without an endpoint the card whose hardware it concerns. None: the whole computer.
    std::optional<CardId> card;
    /// The title of the endpoint or the card, as people know it; "this computer" without them.
    std::string subject;
    /// A name for programs that does not change, such as "property-unreadable" or "endpoints-with-one-name".
    std::string rule;
    /// What is wrong, as a sentence with a full stop, on one line.
    std::string sentence;
    /// What is missing or different because of it, as a sentence; empty if nothing is.
    std::string effect;
    /// What usually causes it, as one sentence or two; empty if nothing in particular does.
    std::string cause;
    /// The call that failed, for Kind::failure.
    std::optional<Problem> problem;

    friend SONAVIT_CLIENT_API bool operator==(const Finding& left, const Finding& right);
    friend SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& stream, const Finding& finding);
};

/// "failure", "data" or "oddity".
SONAVIT_CLIENT_API const char* keyOf(Finding::Kind kind) noexcept;

/// A fact about an endpoint, and the platform call that gave it.
struct SONAVIT_CLIENT_API Fact
{
    std::string sentence;
    std::string call;      ///< "IPropertyStore::GetValue(instancePath)"; empty for what follows from other facts
    std::string object;    ///< id of what it was called on; empty for a function, or if it was called on several
    std::int32_t code = 0; ///< of a call that failed, as Problem::code(); otherwise 0

    friend SONAVIT_CLIENT_API bool operator==(const Fact& left, const Fact& right);
    friend SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Fact& fact);
};

/// The answer to one question about an endpoint.
struct SONAVIT_CLIENT_API Reason
{
    enum class Question : int
    {
        card,     ///< why it is in this card
        jacks,    ///< why it has these jacks
        controls, ///< why these controls act on it and no others
        isDefault ///< why it is the default, or why it is not
    };

    Question question = Question::card;
    std::string title;       ///< the question as a sentence
    std::vector<Fact> facts; ///< each leads to the next
    std::string conclusion;  ///< the answer as a sentence

    friend SONAVIT_CLIENT_API bool operator==(const Reason& left, const Reason& right);
    /// Question, facts and conclusion, a line each.
    friend SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Reason& reason);
};

/// Looks for everything that is wrong with the sound hardware of this computer: the computer's findings first, then
/// card by card in the order of the snapshot those of hardware that several endpoints share and those of each endpoint.
/// Empty if nothing is. What an endpoint of its state cannot have is not missed.
///
/// It reads all that capture() reads and waits for it in the same way. Nothing is changed. Problem::Kind::noAnswer,
/// wouldWait, ended.
SONAVIT_CLIENT_API Result<std::vector<Finding>> diagnose(System& system);
/// The findings that concern one endpoint, with those of the hardware that it reaches, which it may share with others.
/// Problem::Kind::notThere for one that does not exist.
SONAVIT_CLIENT_API Result<std::vector<Finding>> diagnose(System& system, const EndpointId& endpoint);

/// Why an endpoint is in its card, has its jacks and its controls, and is the default or not: one Reason for each
/// question, in their order. Problem::Kind::notThere for an endpoint that does not exist; otherwise as diagnose().
///
/// The sentences are for people and may change. A call that failed is one of the facts, with its code.
SONAVIT_CLIENT_API Result<std::vector<Reason>> explain(System& system, const EndpointId& endpoint);

/// "card", "jacks", "controls", "default": as in JSON.
SONAVIT_CLIENT_API const char* keyOf(Reason::Question question) noexcept;
}
}
