/// @file
/// What a survey and a snapshot of the same computer say is wrong with it.
#pragma once

#include "client/diagnosing/places.h"
#include "sonavit/diagnosis.h"

#include <string>
#include <vector>

namespace sonavit::diagnosing
{
/// A finding and the endpoints that it concerns.
struct Entry
{
    Finding finding;
    Owners owners; ///< empty: the whole computer
};

/// What a rule has found, before it is known to whom it belongs.
struct Draft
{
    Finding::Kind kind = Finding::Kind::data;
    const char* rule = "";
    std::string sentence;
    std::string effect = {};
    std::string cause = {};
    std::optional<Problem> problem = {};
};

/// Collects findings, each with its subject.
class Findings
{
public:
    explicit Findings(const Places& places) : m_places(places) {}
    Findings(const Findings&) = delete;
    Findings& operator=(const Findings&) = delete;

    void addOfComputer(Draft draft) { add(std::move(draft), Owners()); }
    void addOfEndpoint(const std::string& endpoint, Draft draft) { add(std::move(draft), Owners{endpoint}); }
    /// Of the endpoints that reach the device or the part.
    void addOf(const std::string& object, Draft draft) { add(std::move(draft), m_places.ownersOf(object)); }
    void addOfCard(const Card& card, Draft draft);
    /// Of the computer, and of each of these endpoints if one of them is asked for alone.
    void addShared(Owners owners, Draft draft);
    void add(Draft draft, Owners owners);

    /// The computer's first, then those of each card and of each of its endpoints in the order of the snapshot.
    std::vector<Entry> inOrder() const;

private:
    Finding finished(Draft draft, const Owners& owners) const;

    const Places& m_places;
    std::vector<Entry> m_entries;
};

// The rules, each a file. They add to the findings.

void findFailures(const Places& places, Findings& findings);
void findPropertyFaults(const Places& places, Findings& findings);
void findVolumeFaults(const Places& places, Findings& findings);
void findControlFaults(const Places& places, Findings& findings);
void findHardwareFaults(const Places& places, Findings& findings);
void findComputerFaults(const Places& places, Findings& findings);
void findOddities(const Places& places, Findings& findings);

/// All of them, in order.
std::vector<Entry> findingsOf(const capturing::Survey& survey, const Snapshot& snapshot);

/// Whether the endpoint's hardware answers, as that of active and unplugged ones does.
bool hasHardware(const sim::Device& device) noexcept;
}
