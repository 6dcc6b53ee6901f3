/// @file
/// A walk through everything that Core Audio answers, as a machine that answers the same.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/machine.h"
#include "sonavit/problem.h"
#include "sonavit/result.h"
#include "sonavit/system.h"

#include <functional>
#include <string>
#include <vector>

namespace sonavit::capturing
{
/// A platform call that failed, in a way in which the surveyed machine does not fail by itself.
struct FailedCall
{
    enum class Outcome
    {
        code,       ///< it returned FailedCall::code
        nullSuccess ///< it succeeded and stored null where it promises an object or a string
    };

    std::string operation;              ///< "IMMDevice::Activate", or a function's name such as "waveOutMessage"
    std::string object;                 ///< as a fault rule of the machine names it; empty for a function
    std::vector<std::string> arguments; ///< all that tell the call from others, as a fault rule has them
    Outcome outcome = Outcome::code;
    HRESULT code = S_OK; ///< HRESULT, MMRESULT, or what else the function returns; E_POINTER for nullSuccess

    /// "IMMDevice::Activate(IAudioClient, 23)".
    std::string call() const;
    /// The failure as the client layer reports it.
    Problem problem() const;
};

bool operator==(const FailedCall& left, const FailedCall& right);

/// What Core Audio answers.
struct Survey
{
    /// The endpoints in the platform's order, and the devices to which connectors lead. Without faults, script and
    /// name.
    sim::Machine machine;
    std::vector<FailedCall> failures; ///< each once, in the order of the walk
    std::vector<FailedCall> recorded; ///< further ones, whose codes are data of the machine
    /// What was answered and no machine can express, a sentence each.
    std::vector<std::string> notes;
};

/// What a walk does between two devices, so that it keeps nothing waiting.
using Pause = std::function<void()>;

/// Asks Core Audio on this thread, which must have initialised COM. Nothing is changed and no client is registered.
/// Equal answers lead to equal surveys; so a machine that answers as the survey says is surveyed with the same result.
Survey surveyPlatform(const Pause& pause);

/// The same on the worker of @p system, without a snapshot: Problem::Kind::noAnswer, wouldWait, ended.
Result<Survey> survey(System& system, const std::string& operation);
}
