/// @file
/// To whom the things of a survey belong.
#pragma once

#include "client/capturing/survey.h"
#include "sonavit/snapshot.h"

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sonavit::diagnosing
{
/// A part of the survey's machine and its device.
struct PartOf
{
    const sim::Device* device = nullptr;
    const sim::Part* part = nullptr;
    const sim::Connector* connector = nullptr; ///< the same part if it is one
};

/// The endpoints that own or reach a thing, by the spelling of the survey, in its order.
using Owners = std::vector<std::string>;

/// An id between quotation marks, never cut, so that it can be searched for.
std::string inFull(const std::string& id);

/// Looks up the things of a survey. Survey and snapshot must outlive it.
class Places
{
public:
    Places(const capturing::Survey& survey, const Snapshot& snapshot);
    Places(const Places&) = delete;
    Places& operator=(const Places&) = delete;

    const capturing::Survey& survey() const noexcept { return m_survey; }
    const sim::Machine& machine() const noexcept { return m_survey.machine; }
    const Snapshot& snapshot() const noexcept { return m_snapshot; }

    /// The endpoints that Windows lists. A connector may lead to another one, whose device is not there.
    const std::vector<const sim::Endpoint*>& listed() const noexcept { return m_listed; }
    /// Null if there is none.
    const sim::Endpoint* endpoint(const std::string& id) const;
    const sim::Device* device(const std::string& id) const;
    PartOf part(const std::string& id) const;
    /// Whether an endpoint of that id is listed, whatever the case of its letters.
    bool isListed(const std::string& id) const;

    /// The endpoints that reach what a call was made on: a device, a part, or a list or control of a part, as faults of
    /// a machine name it. All endpoints of an adapter that is not reached part by part; none for anything else.
    Owners ownersOf(const std::string& object) const;
    /// The parts that the signal of an endpoint passes behind its own connectors, nearest first.
    std::vector<PartOf> partsBehind(const std::string& endpoint) const;
    /// Whether a call on that object failed.
    /// @param argument the first one; empty for any
    bool hasFailure(const std::string& operation, const std::string& object, const std::string& argument = {}) const;

    /// "Speakers (Analog Audio)"; with the card where the name does not contain it.
    std::string titleOf(const std::string& endpoint) const;
    std::optional<Card> cardOf(const std::string& endpoint) const;
    /// The card of most of them.
    std::optional<Card> cardOf(const Owners& owners) const;
    /// The name of a part between quotation marks, or how its id ends.
    std::string nameOf(const sim::Part& part) const;

private:
    void index(const sim::Device& device);
    void follow(const sim::Endpoint& endpoint);
    void walk(const std::string& endpoint, const PartOf& entry, bool isOutput);
    void reach(const std::string& object, const std::string& endpoint);
    std::string known(const std::string& object) const;

    const capturing::Survey& m_survey;
    const Snapshot& m_snapshot;
    std::unordered_map<std::string, PartOf> m_parts;
    std::unordered_map<std::string, const sim::Device*> m_devices;
    std::unordered_map<std::string, Owners> m_owners; ///< of devices and parts
    std::unordered_map<std::string, std::vector<PartOf>> m_behind;
    std::vector<const sim::Endpoint*> m_listed;
    std::unordered_set<std::string> m_listedIds; ///< in lower case
};
}
