/// The searches of a connector map while it is built; included by this module's source files only.
#pragma once

#include "libSonavit/audiopart/partview.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcard/listsearch.h"
#include "qor/hashtable.h"
#include "qor/string.h"

#include <unordered_map>
#include <unordered_set>

/// What one run of SoundCard::initializeConnectorMap() knows of the map and of the devices, so that each search takes
/// the same time however large the card is.
///
/// Each search gives what a walk of the list from its first element would give: keys are compared as the elements are,
/// and of equal keys the lowest index counts. The lists only grow during the run.
class SoundCard::ConnectorGraph
{
public:
    /// The map is empty yet; the card may have @p internalDevices from an earlier run.
    explicit ConnectorGraph(const qor::Array<AudioDevice>& internalDevices)
    {
        for (unsigned int i = 0; i < internalDevices.size(); ++i)
            addInternalDevice(internalDevices[i].deviceProperty().deviceId);
    }

    /// Index of the first node whose connector has the id @p id, without regard to case, or listsearch::notFound.
    /// Connectors without an id are equal to one another.
    unsigned int nodeIndex(const qor::String& id) const
    {
        const auto found = m_nodes.find(id);
        return found == m_nodes.end() ? listsearch::notFound : found->second;
    }

    /// Notes that the map has a node at @p index, unless it has one whose connector has the same id.
    /// @return whether there was none
    bool addNode(const qor::String& id, unsigned int index) { return m_nodes.emplace(id, index).second; }

    /// Whether the device @p id is known, compared exactly, case included.
    bool isKnownDevice(const qor::String& id) const { return m_knownDevices.count(id) > 0; }
    void addKnownDevice(const qor::String& id) { m_knownDevices.insert(id); }
    void addKnownDevices(const qor::Array<AudioDevice>& devices)
    {
        for (unsigned int i = 0; i < devices.size(); ++i)
            addKnownDevice(devices[i].deviceProperty().deviceId);
    }

    /// Whether there is an internal device @p id, without regard to case.
    bool isInternalDevice(const qor::String& id) const { return m_internalDevices.count(id) > 0; }
    void addInternalDevice(const qor::String& id) { m_internalDevices.insert(id); }

    /// Number of devices at the front of the internal list whose connectors are all in the map. 0 at first: those of an
    /// earlier run have no node in the new map.
    unsigned int numRegisteredInternalDevices = 0;

private:
    struct ExactHash
    {
        std::size_t operator()(const qor::String& text) const { return qor::HashFunc<qor::String>::hash(text); }
    };

    struct HashWithoutCase
    {
        std::size_t operator()(const qor::String& text) const { return qor::String::hashNoCase(text); }
    };

    struct EqualWithoutCase
    {
        bool operator()(const qor::String& left, const qor::String& right) const
        {
            return qor::String::equalNoCase(left, right);
        }
    };

    std::unordered_map<qor::String, unsigned int, HashWithoutCase, EqualWithoutCase> m_nodes;
    std::unordered_set<qor::String, ExactHash> m_knownDevices;
    std::unordered_set<qor::String, HashWithoutCase, EqualWithoutCase> m_internalDevices;
};
