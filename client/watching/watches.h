/// @file
/// The cards whose hardware is watched. All of it runs on the worker.
#pragma once

#include "client/reading/hardwarewalk.h"
#include "client/watching/inbox.h"
#include "client/watching/registrations.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::watching
{
/// Keeps a walk through the hardware of each watched card, with registrations on its controls, and what was read last.
class Watches
{
public:
    explicit Watches(std::shared_ptr<Inbox> inbox);

    /// One watch more of @p card. @return its number
    std::uint64_t begin(const CardId& card);
    void end(std::uint64_t number);
    bool isEmpty() const noexcept { return m_cards.empty(); }

    /// Walks through the cards that are new or whose endpoints have changed, and forgets those that are not there now.
    void follow(IMMDeviceEnumerator& enumerator, const std::vector<Card>& cards);
    /// Lets follow() walk through all of them again.
    void distrust() noexcept;
    /// Reads the hardware of one card anew. @return the card; no value if it is not watched or not there
    std::optional<CardId> read(std::uint32_t key);
    /// The same after a reading that has failed, with a new walk if the last one or a registration was incomplete.
    std::optional<CardId> readAgain(std::uint32_t key, IMMDeviceEnumerator& enumerator, const std::vector<Card>& cards);
    /// What could not be read of a card.
    struct Reading
    {
        CardId card;
        std::vector<Problem> problems;
        bool areNew = false; ///< the reading before did not have all of them
    };

    /// The last reading of each card that was read since the last question.
    std::vector<Reading> takeReadings();
    std::optional<std::uint32_t> keyOf(const CardId& card) const;
    /// What was read last, in the order of @p cards.
    std::vector<Hardware> hardware(const std::vector<Card>& cards) const;
    /// Ends all registrations and releases everything; the watches stay.
    void release() noexcept;

private:
    struct Watched
    {
        std::uint32_t key = 0; ///< in the inbox
        std::vector<std::uint64_t> numbers;
        std::string endpoints;  ///< those of the walk, with their states
        bool isTrusted = false; ///< the walk is that of the last reading of everything
        std::unique_ptr<reading::HardwareWalk> walk;
        std::vector<ControlRegistration> registrations;
        std::vector<Problem> registrationProblems;
        std::optional<Hardware> hardware;
        Reading reading;           ///< of hardware
        bool isReadingNew = false; ///< takeReadings() has not returned it yet

        void release() noexcept;
    };

    using Cards = std::map<CardId, Watched>;

    Cards::iterator find(std::uint32_t key);
    static Reading readingOf(const CardId& card, const Hardware& hardware, const Reading& former);
    void walk(IMMDeviceEnumerator& enumerator, const Card& card, Watched& watched);

    const std::shared_ptr<Inbox> m_inbox;
    Cards m_cards;
    std::uint64_t m_lastNumber = 0;
    std::uint32_t m_lastKey = 0;
};
}
