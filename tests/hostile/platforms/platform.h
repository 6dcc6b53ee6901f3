/// @file
/// Platforms that answer what cannot be.
#pragma once

#include "simulator/simulation.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace hostile
{
/// References on objects of the machine which lies hand out; to be dropped before the machine is looked at.
using References = std::vector<std::shared_ptr<IUnknown>>;

/// What makes a platform hostile: a machine that no file may contain, lies, or both.
struct Platform
{
    std::string name;
    std::function<void(sim::Machine&)> change;       ///< empty: none
    std::function<References(sim::Simulation&)> lie; ///< empty: none
    /// Why the object model promises nothing on it, see README.md; empty: it must stand it.
    std::string beyondObjectModel;
};

/// What all of them begin with: a codec with a speaker (hardware volume and mute, a described jack) and a microphone
/// behind an input selector, and a USB headset.
struct HonestMachine
{
    HonestMachine();

    sim::Machine machine;
    std::string speaker;
    std::string microphone;
    std::string earphone;
    std::string codec;
    std::string speakerConnector;
    std::string speakerJack;
    std::string speakerStream;
    std::string microphoneJack;
    std::string volume;
    std::string mute;
    std::string selector;
};

const HonestMachine& honest();

/// The honest machine, or what becomes of it.
sim::Machine machineOf(const Platform& platform);

/// Adds a chain of mutes behind the speaker's volume.
void addSubunits(sim::Machine& machine, std::size_t count);

// All of them, by topic.
std::vector<Platform> platformsThatLieInTexts();
std::vector<Platform> platformsThatLieInCounts();
std::vector<Platform> platformsThatLieInNumbers();
std::vector<Platform> platformsThatLieInObjects();
std::vector<Platform> platformsWithStrangeBlobs();
std::vector<Platform> platformsWithStrangeWiring();
std::vector<Platform> platformsWithStrangeData();

struct Topic
{
    const char* name;
    std::vector<Platform> (*platforms)();
};

inline void PrintTo(const Topic& topic, std::ostream* out)
{
    *out << topic.name;
}

const std::vector<Topic>& topics();

/// A share of the platforms of a topic, so that all @p shares together have each of them once; under Wine and under
/// sanitizers, where everything takes many times as long, a third of that. With SONAVIT_HOSTILE=all in the environment
/// each share has all of them.
std::vector<Platform> shareOf(const Topic& topic, std::size_t share, std::size_t shares);
/// Whether that is in the environment.
bool isEverythingWanted();
}
