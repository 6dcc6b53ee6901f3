#include "client/diagnosing/usualcauses.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace
{
using sonavit::diagnosing::usualCause;

struct FailedWith
{
    std::uint32_t code;
    const char* operation;
    const char* argument = "";
};

/// A cause in the words for people, and the calls that fail for it.
struct CauseRow
{
    const char* sentence;
    std::vector<FailedWith> calls;
};

const std::vector<CauseRow>& causeRows()
{
    static const std::vector<CauseRow> rows = {
        {"The service \"Windows Audio\" is stopped, or it has just ended. Start it in Services, or restart the "
         "computer.",
         {{0x88890010, "IConnector::GetType"},
          {0x80070422, "IConnector::GetType"},
          {0x80070426, "IConnector::GetType"},
          {0x800706BA, "IConnector::GetType"},
          {0x800706BE, "IConnector::GetType"},
          {0x800706BF, "IConnector::GetType"},
          {0x800706D9, "IConnector::GetType"}}},
        {"The service \"Windows Audio\" is busy or hangs. Try again; if it stays so, restart the service.",
         {{0x800706BB, "IConnector::GetType"},
          {0x800705B4, "IConnector::GetType"},
          {0x80070079, "IConnector::GetType"},
          {0x8001011F, "IConnector::GetType"}}},
        {"The device was unplugged, or its driver was restarted or replaced, while it was asked. Look again; if it "
         "stays so, plug the device in anew.",
         {{0x80070490, "IConnector::GetType"},
          {0x88890004, "IConnector::GetType"},
          {0x88890026, "IConnector::GetType"},
          {0x80070015, "IConnector::GetType"},
          {0x8007048F, "IConnector::GetType"},
          {0x80070651, "IConnector::GetType"}}},
        {"The device that it belonged to is no longer installed. Windows still remembers the endpoint; installing the "
         "driver again brings the device back.",
         {{0x80070002, "IMMDevice::Activate"},
          {0x80070002, "IPropertyStore::GetValue"},
          {0xE000020B, "IConnector::GetType"},
          {0x800F020B, "IConnector::GetType"},
          {0xE0000225, "IConnector::GetType"},
          {0x800F0225, "IConnector::GetType"},
          {0xE0000204, "IConnector::GetType"},
          {0xE0000209, "IConnector::GetType"}}},
        {"The driver has an error: it reports success and gives nothing. A newer driver may be better.",
         {{0x80004003, "IConnector::GetType"}, {0x8007000D, "IConnector::GetType"}}},
        {"The driver does not say why. Restarting the device or installing a newer driver often helps.",
         {{0x80004005, "IConnector::GetType"},
          {0x80070057, "IPart::GetName"},
          {0x80070002, "IConnector::GetType"},
          {2, "IConnector::GetType"},
          {0x88890001, "IAudioClient::GetMixFormat"}}},
        {"The driver does not implement it. Only another driver can.",
         {{0x80004001, "IConnector::GetType"},
          {0x80070032, "IConnector::GetType"},
          {0x80070492, "IConnector::GetType"},
          {0x80004002, "IConnector::GetType"}}},
        {"Windows keeps its properties in a part of the registry that this account may not read, or a user has logged "
         "on from another computer since. Start the program again, or run it as an administrator.",
         {{0x80070005, "IPropertyStore::GetValue"},
          {0x80070005, "IMMDevice::OpenPropertyStore"},
          {0x80030005, "IConnector::GetType"},
          {0x80030005, "IPropertyStore::GetValue", "friendlyName"}}},
        {"For an input, the privacy settings of Windows do not let desktop programs use the microphone. Otherwise, "
         "security software denies it.",
         {{0x80070005, "IMMDevice::Activate", "IAudioClient"},
          {0x80070005, "IAudioClient::GetMixFormat"},
          {0x80070005, "IAudioClient::GetDevicePeriod"}}},
        {"This account, or security software, does not allow it. Run the program as an administrator to see whether "
         "that is so.",
         {{0x80070005, "IConnector::GetType"}, {0x80070005, "IMMDevice::Activate", "IAudioEndpointVolume"}}},
        {"The computer or the audio service has too little memory left.",
         {{7, "waveOutMessage"}, {0x8007000E, "IConnector::GetType"}, {0x800705AA, "IConnector::GetType"}}},
        {"The program asks Windows in a way that it does not allow on that thread: an error in the program, not in the "
         "computer.",
         {{0x800401F0, "IConnector::GetType"},
          {0x800401F3, "IConnector::GetType"},
          {0x80010106, "IConnector::GetType"},
          {0x8001010D, "IConnector::GetType"},
          {0x8001010E, "IConnector::GetType"}}},
        {"Parts of Windows are not installed or damaged, as on a server without the audio service. Check with \"sfc "
         "/scannow\".",
         {{0x80070424, "IConnector::GetType"},
          {0x80040154, "IConnector::GetType"},
          {0x80040155, "IConnector::GetType"}}},
        {"The wave driver is an old one, or stands for a device elsewhere, and knows nothing of endpoints.",
         {{3, "waveOutMessage"}, {8, "waveOutMessage"}, {11, "waveOutMessage"}, {20, "waveOutMessage"}}},
        {"The device went away after its numbers were counted, or the wave driver counts one that it does not have.",
         {{2, "waveOutMessage"}, {6, "waveOutMessage"}}},
        {"The driver announces more than it has, or its device was replaced while it was asked.",
         {{0x80070490, "IDeviceTopology::GetConnector"},
          {0x80070490, "IPart::EnumPartsIncoming"},
          {0x80070057, "IDeviceTopology::GetConnector"},
          {0x80070490, "IPartsList::GetPart"}}},
        {"The driver or the audio service was restarted since the program opened it. Start the program again.",
         {{0x80010007, "IConnector::GetType"},
          {0x80010012, "IConnector::GetType"},
          {0x80010108, "IConnector::GetType"},
          {0x800401FD, "IConnector::GetType"}}},
        {"Another program uses the device for itself alone. Close it.",
         {{0x8889000A, "IConnector::GetType"}, {0x800700AA, "IConnector::GetType"}}},
        {"Windows has kept a format that the device cannot have. Setting another one in the sound settings may help.",
         {{0x88890008, "IConnector::GetType"}}},
        {"The driver's setup (INF) file has written it in another form. A newer driver may be better.",
         {{0x8007000D, "IPropertyStore::GetValue"},
          {0x80020005, "IPropertyStore::GetValue"},
          {0x8007000D, "IPropertyStore::GetValue", "friendlyName"}}},
    };
    return rows;
}

TEST(UsualCause, IsToldForEachCodeAndCall)
{
    for (const CauseRow& row : causeRows())
    {
        for (const FailedWith& call : row.calls)
            EXPECT_EQ(row.sentence, usualCause(call.code, call.operation, call.argument, true))
                << std::hex << call.code << " of " << call.operation;
    }
}

TEST(UsualCause, OfAnUnknownCodeDependsOnWhetherTheDeviceIsThere)
{
    EXPECT_EQ(0u, usualCause(0x80004005, "IConnector::GetType", "", true).find("The driver does not say why."));
    EXPECT_EQ(0u, usualCause(0x80004005, "IConnector::GetType", "", false).find("The device was unplugged,"));
}
}
