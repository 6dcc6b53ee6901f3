// The hardware graph: controls, selectors, parts, topologies.
#include "libSonavit/soundcard.h"
#include "tests/faults/memory/librarytexts.h"
#include "tests/faults/memory/subject.h"

namespace faults::memory
{
namespace
{
/// The hardware controls of each endpoint, in both forms.
class Resolution final : public Subject
{
public:
    explicit Resolution(sim::Simulation&) : m_cards(SoundCard::enumerateSystemSoundDevices()) {}

    void work() override
    {
        m_found = 0;
        m_outside = 0;
        for (unsigned int i = 0; i < m_cards.size(); ++i)
        {
            resolve(m_cards[i], *m_cards[i].m_playbackDevices);
            resolve(m_cards[i], *m_cards[i].m_recordDevices);
        }
    }

    std::string answer() override
    {
        std::string text = std::to_string(m_found) + ", " + std::to_string(m_outside) + " not in the graph";
        for (unsigned int i = 0; i < m_controls.size(); ++i)
            text += " " + m_controls[i].ownerName.toUtf8();
        for (unsigned int i = 0; i < m_controllers.size(); ++i)
            text += " " + (m_controllers[i].get() == nullptr ? std::string("nothing")
                                                             : m_controllers[i]->ownerName().toUtf8());
        return text;
    }

private:
    void resolve(const SoundCard& card, const qor::Array<AudioDevice>& endpoints)
    {
        for (unsigned int i = 0; i < endpoints.size(); ++i)
        {
            try
            {
                m_found += card.volumeController(endpoints[i], m_controls);
                m_found += card.volumeController(endpoints[i], m_controllers);
            }
            catch (const qor::IndexOutOfBounds&) // the documented answer for an endpoint that is not in the graph
            {
                ++m_outside;
            }
        }
    }

    qor::Array<SoundCard> m_cards;
    unsigned int m_found = 0;
    unsigned int m_outside = 0;
    qor::Array<SoundCard::VolumeController> m_controls;
    qor::Array<SharedPointer<VolumeControllerInterface>> m_controllers;
};

class Selectors final : public Subject
{
public:
    explicit Selectors(sim::Simulation&) : m_cards(SoundCard::enumerateSystemSoundDevices()) {}

    void work() override
    {
        m_selectors.clear();
        for (unsigned int i = 0; i < m_cards.size(); ++i)
            m_cards[i].recordingMux(m_selectors);
    }

    std::string answer() override { return std::to_string(m_selectors.size()); }

private:
    qor::Array<SoundCard> m_cards;
    qor::Array<COMPtr<IAudioInputSelector>::pointer> m_selectors;
};

/// A walk through the parts of each adapter, and copies of what it has found.
class Parts final : public Subject
{
public:
    explicit Parts(sim::Simulation&)
    {
        const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
        for (unsigned int i = 0; i < cards.size() && i < fewCards; ++i)
        {
            for (unsigned int k = 0; k < cards[i].m_internalDevices->size(); ++k)
                m_topologies.append((*cards[i].m_internalDevices)[k].m_topology);
        }
    }

    void work() override
    {
        m_parts.clear();
        for (unsigned int i = 0; i < m_topologies.size(); ++i)
        {
            AudioDeviceTopology topology(m_topologies[i].topology());
            const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
            const qor::Array<AudioComponent<ISubunit>> subunits = topology.subunit();
            walk(connectors);
            walk(subunits);
            for (unsigned int k = 0; k < connectors.size(); ++k)
                topology.connectorsAreLinked(connectors[0], connectors[k]);
        }
    }

    std::string answer() override
    {
        std::string text;
        for (unsigned int i = 0; i < m_parts.size(); ++i)
            text += " " + m_parts[i].globalId().toUtf8();
        return text;
    }

private:
    static constexpr unsigned int fewCards = 2;

    template<class I>
    void walk(const qor::Array<AudioComponent<I>>& components)
    {
        for (unsigned int i = 0; i < components.size(); ++i)
        {
            AudioComponent<I> component = components[i];
            qor::Array<AudioPart> neighbours;
            component.incomingPartsList(neighbours);
            append(neighbours);
            component.outgoingPartsList(neighbours);
            append(neighbours);
        }
    }

    void append(const qor::Array<AudioPart>& parts)
    {
        for (unsigned int i = 0; i < parts.size(); ++i)
            m_parts.append(parts[i]);
    }

    qor::Array<AudioDeviceTopology> m_topologies;
    qor::Array<AudioPart> m_parts;
};
}

std::vector<Case> hardwareCases()
{
    return {caseOf<Resolution>("volumeController"), caseOf<Selectors>("recordingMux"), caseOf<Parts>("parts")};
}
}
