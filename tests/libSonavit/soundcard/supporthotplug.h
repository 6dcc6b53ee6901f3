/// A machine whose endpoints arrive and leave.
#pragma once

#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/soundcard/supportobserver.h"
#include "tests/support/librarytest.h"

namespace support
{
/// A machine with two cards, discovered, with an observer on each side of the first one.
struct HotPlug : LibraryTest
{
    ~HotPlug() noexcept override {} // the cards' own may throw

    void SetUp() override
    {
        LibraryTest::SetUp();
        sim::MachineBuilder builder;
        sim::CardBuilder codec = builder.card("Codec");
        microphone = codec.microphone().id();
        speaker = codec.speaker().id();
        headphones = codec.headphones().unplugged().id();
        late = codec.lineOut("Late").notInstalled().id();
        lateMicrophone = codec.lineIn("Late input").notInstalled().id();
        foreign = builder.usbCard("Other").headphones("Other headphones").id();
        run(withoutGuids(builder.build()));
        cards = SoundCard::enumerateSystemSoundDevices();
        ASSERT_EQ(2u, cards.size());
        ASSERT_TRUE(card().registerPlaybackObserver(playback.handle()));
        ASSERT_TRUE(card().registerRecordObserver(record.handle()));
        log.clear();
        simulation().journal().clear();
    }

    void TearDown() override
    {
        cards.clear();
        LibraryTest::TearDown();
    }

    SoundCard& card() { return cards[0]; }
    SoundCard::SoundCardDeviceUpdater& updater() { return *card().m_updater; }
    qor::Array<AudioDevice>& playbackDevices() { return *card().m_playbackDevices; }
    qor::Array<AudioDevice>& recordDevices() { return *card().m_recordDevices; }

    std::string speaker, headphones, microphone, late, lateMicrophone, foreign;
    RecordingObserver playback;
    RecordingObserver record;
    qor::Array<SoundCard> cards;
};

/// An id as the platform passes it, for direct calls of the updater.
struct IdText
{
    explicit IdText(const std::string& id) : text(qor::String::fromUtf8(id)) {}
    operator LPCWSTR() const { return platform::wide(text.getUCS2Buffer()); }
    qor::String text;
};
}
