/// The controls that a card finds for an endpoint, as strings.
#pragma once

#include "tests/libSonavit/soundcard/supportgraphcard.h"

namespace support
{
/// A control as a string: the level that identifies it, its owner, and "muted", "not muted" or "no mute".
inline std::string described(const SoundCard::VolumeController& control)
{
    float level = 1.0f;
    EXPECT_EQ(S_OK, control.volumeLevel->GetLevel(0, &level));
    BOOL muted = FALSE;
    if (control.mute.get() != nullptr)
    {
        EXPECT_EQ(S_OK, control.mute->GetMute(&muted));
    }
    const std::string mute = control.mute.get() == nullptr ? "no mute" : muted == FALSE ? "not muted" : "muted";
    return std::to_string(static_cast<int>(level)) + " " + control.ownerName.toUtf8() + ", " + mute;
}

struct VolumeResolution : GraphCardTest
{
    void discover()
    {
        discovered();
        log.clear();
    }

    /// The controls of the card's first playback endpoint.
    std::vector<std::string> controls()
    {
        if (cards.size() == 0)
            discover();
        qor::Array<SoundCard::VolumeController> result;
        count = cards[0].volumeController((*cards[0].m_playbackDevices)[0], result);
        std::vector<std::string> texts;
        for (unsigned int i = 0; i < result.size(); ++i)
            texts.push_back(described(result[i]));
        EXPECT_EQ(count, texts.size());
        return texts;
    }

    void TearDown() override
    {
        cards.clear();
        kept.partsLists = walks();
        GraphCardTest::TearDown();
    }

    /// The number of walks that kept a list: those that the platform answered with success.
    long walks()
    {
        long found = 0;
        for (const sim::JournalEntry& entry : simulation().journal().of("IPart::EnumParts*"))
            found += SUCCEEDED(entry.result) ? 1 : 0;
        return found;
    }

    unsigned int count = 0;
};
}
