// Finding cards and endpoints.
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/sysinfohelper.h"
#include "tests/faults/memory/librarytexts.h"
#include "tests/faults/memory/subject.h"

namespace faults::memory
{
namespace
{
class Discovery final : public Subject
{
public:
    explicit Discovery(sim::Simulation&) {}

    void work() override { m_cards = SoundCard::enumerateSystemSoundDevices(); }
    std::string answer() override { return textOf(m_cards); }

private:
    qor::Array<SoundCard> m_cards;
};

class DiscoveryByInterface final : public Subject
{
public:
    explicit DiscoveryByInterface(sim::Simulation&) {}
    ~DiscoveryByInterface() noexcept(false) override { deleteCards(); }

    void work() override
    {
        deleteCards();
        enumerateSoundCards(m_cards);
    }

    std::string answer() override
    {
        std::string text;
        for (unsigned int i = 0; i < m_cards.size(); ++i)
            text += textOf(static_cast<const SoundCard&>(*m_cards[i]));
        return text;
    }

private:
    void deleteCards()
    {
        for (unsigned int i = 0; i < m_cards.size(); ++i)
            delete m_cards[i].get();
        m_cards.clear();
    }

    qor::Array<BorrowedPointer<SoundCardInterface>> m_cards;
};

/// The instance id of the last card, so that the search goes through all of them.
qor::String lastInstanceId()
{
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    return cards.size() == 0 ? qor::String("unknown") : cards[cards.size() - 1].instanceId();
}

class CardById final : public Subject
{
public:
    explicit CardById(sim::Simulation&) : m_id(lastInstanceId()) {}

    void work() override
    {
        m_isFound = SoundCard::createSoundCard(m_id, m_card);
        m_instanceId = m_card.instanceId();
    }

    std::string answer() override
    {
        return (m_isFound ? "found " : "not found ") + m_instanceId.toUtf8() + "\n" + textOf(m_card);
    }

private:
    const qor::String m_id;
    SoundCard m_card;
    bool m_isFound = false;
    qor::String m_instanceId;
};

class Facade final : public Subject
{
public:
    explicit Facade(sim::Simulation&) : m_id(lastInstanceId()) {}

    void work() override
    {
        libSonavit::SysInfoHelper helper;
        m_answers[0] = helper.hasAnalogOut(m_id);
        m_answers[1] = helper.hasDigitalOut(m_id);
        m_answers[2] = helper.hasLineIn(m_id);
        m_answers[3] = helper.hasMicIn(m_id);
    }

    std::string answer() override
    {
        std::string text;
        for (const bool each : m_answers)
            text += each ? "yes " : "no ";
        return text;
    }

private:
    const qor::String m_id;
    bool m_answers[4] = {};
};

class StateLists final : public Subject
{
public:
    explicit StateLists(sim::Simulation&) {}

    void work() override
    {
        m_lists.enumerate(eRender);
        m_lists.refresh(eCapture);
        EndpointDeviceEnumeratorCommon copy(m_lists);
        m_copy = copy;
    }

    std::string answer() override
    {
        const EndpointDeviceEnumeratorCommon& lists = m_copy;
        return textOf(lists.activeDevice()) + textOf(lists.notPresentDevice()) + textOf(lists.disabledDevice()) +
               textOf(lists.unpluggedDevice());
    }

private:
    EndpointDeviceEnumeratorCommon m_lists;
    EndpointDeviceEnumeratorCommon m_copy;
};

class FlatLists final : public Subject
{
public:
    explicit FlatLists(sim::Simulation&) {}

    void work() override
    {
        const libSonavit::EndpointDeviceEnumerator enumerator;
        enumerator.audioDevices(eAll, m_own);
        const OwnedPointer<libSonavit::AudioDeviceEnumerator>& shared =
            libSonavit::AudioDeviceEnumeratorFactory::enumerator();
        if (shared.get() != nullptr && shared->deviceEnumerator().get() != nullptr)
            shared->audioDevices(eRender, m_shared);
    }

    std::string answer() override { return textOf(m_own) + textOf(m_shared); }

private:
    qor::Array<AudioDevice> m_own;
    qor::Array<AudioDevice> m_shared;
};
}

std::vector<Case> discoveryCases()
{
    return {caseOf<Discovery>("discovery"),      caseOf<DiscoveryByInterface>("enumerateSoundCards"),
            caseOf<CardById>("createSoundCard"), caseOf<Facade>("SysInfoHelper"),
            caseOf<StateLists>("state lists"),   caseOf<FlatLists>("flat lists")};
}
}
