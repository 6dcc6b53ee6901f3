/// @file
/// The public operations of the client layer that ask the platform.
#pragma once

#include "tests/faults/client/answer.h"
#include "tests/faults/client/stage.h"

#include <functional>
#include <string>
#include <vector>

namespace faults::client
{
/// One operation, as it is tried on each machine that has what it needs.
struct Operation
{
    std::string name; ///< "System::setMute"
    /// Calls it while the calls of the platform fail, and adds what it answers.
    std::function<void(Stage&, Answer&)> act;
    /// What a program does before, without faults. By default it reads a snapshot.
    std::function<void(Stage&)> arrange = [](Stage& stage) { static_cast<void>(stage.audio().snapshot()); };
    std::function<bool(const Targets&)> fits = [](const Targets&) { return true; };
    /// Looks afterwards, without faults, whether the answer was true.
    std::function<void(Stage&, Answer&)> verify = [](Stage&, Answer&) {};
    /// Whether it changes the machine, so that what is right is read afterwards.
    bool changesMachine = false;
    /// Whether the answer may still be the one from before, as long as a problem says so.
    bool mayBeLate = false;
    /// Whether the answer says why it leaves something out. Lists of controls and settings do not.
    bool tellsWhy = true;
    /// Whether the System still lives afterwards.
    bool keepsSystem = true;
};

/// First questions to a System, questions to one that has read, and what reads the hardware.
std::vector<Operation> readingOperations();
/// What changes levels, mutes, controls, selections and formats.
std::vector<Operation> changingOperations();
/// Events and what follows from them, watches and ends.
std::vector<Operation> watchingOperations();
}
