/// @file
/// The sound hardware of a computer as a file, for tests on another one.
#pragma once

#include "sonavit/export.h"
#include "sonavit/problem.h"
#include "sonavit/result.h"
#include "sonavit/system.h"

#include <string>
#include <vector>

namespace sonavit
{
inline namespace v1
{
struct CaptureOptions
{
    /// The machine's name in the file, UTF-8.
    std::string name = "captured machine";
    /// Replaces serial numbers, Bluetooth addresses, container ids and names of owners in everything that is returned,
    /// each by the same other one throughout.
    bool isAnonymous = false;
    /// With isAnonymous: further names to replace wherever they occur, such as those of the user and of the computer,
    /// UTF-8.
    std::vector<std::string> names = {};
};

/// A captured machine.
struct Capture
{
    /// The content of a machine file, which tests read and `sonavit --machine FILE` runs.
    std::string text;
    /// The calls that failed; in the file each is a fault, so that it fails again.
    std::vector<Problem> problems;
    /// What was answered and a machine file cannot express, a sentence each.
    std::vector<std::string> notes;
};

/// Captures what Core Audio answers on this computer: all endpoints in every state with their properties, formats and
/// volumes, the hardware graphs behind them, the defaults, the wave ids, and the devices to which they belong.
///
/// Nothing is changed, and no client is registered. It waits for the platform as System::graph() does; on a computer
/// with slow devices give the System more patience. Problem::Kind::noAnswer, wouldWait, ended; unreadable if the
/// text could not be read as a machine file again, say because of a name with a zero character. What cannot be read is
/// in Capture::problems and keeps nothing else from being captured. Throws std::bad_alloc, and std::system_error if
/// there can be no thread.
SONAVIT_CLIENT_API Result<Capture> capture(System& system, const CaptureOptions& options = {});
}
}
