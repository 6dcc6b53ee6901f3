#include "client/diagnosing/usualcauses.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace sonavit::diagnosing
{
namespace
{
constexpr const char* serviceStopped =
    "The service \"Windows Audio\" is stopped, or it has just ended. Start it in Services, or restart the computer.";
constexpr const char* serviceBusy =
    "The service \"Windows Audio\" is busy or hangs. Try again; if it stays so, restart "
    "the service.";
constexpr const char* deviceGone = "The device was unplugged, or its driver was restarted or replaced, while it was "
                                   "asked. Look again; if it stays so, plug the device in anew.";
constexpr const char* noDriver = "The device that it belonged to is no longer installed. Windows still remembers the "
                                 "endpoint; installing the driver again brings the device back.";
constexpr const char* driverSilent =
    "The driver has an error: it reports success and gives nothing. A newer driver may "
    "be better.";
constexpr const char* driverFails = "The driver does not say why. Restarting the device or installing a newer driver "
                                    "often helps.";
constexpr const char* driverRefuses = "The driver does not implement it. Only another driver can.";
constexpr const char* storeDenied =
    "Windows keeps its properties in a part of the registry that this account may not read, or a user has logged on "
    "from another computer since. Start the program again, or run it as an administrator.";
constexpr const char* privacy = "For an input, the privacy settings of Windows do not let desktop programs use the "
                                "microphone. Otherwise, security software denies it.";
constexpr const char* denied = "This account, or security software, does not allow it. Run the program as an "
                               "administrator to see whether that is so.";
constexpr const char* noMemory = "The computer or the audio service has too little memory left.";
constexpr const char* programError =
    "The program asks Windows in a way that it does not allow on that thread: an error "
    "in the program, not in the computer.";
constexpr const char* notInstalled = "Parts of Windows are not installed or damaged, as on a server without the audio "
                                     "service. Check with \"sfc /scannow\".";
constexpr const char* oldWaveDriver =
    "The wave driver is an old one, or stands for a device elsewhere, and knows nothing of endpoints.";
constexpr const char* waveGone =
    "The device went away after its numbers were counted, or the wave driver counts one that it does not have.";
constexpr const char* miscounted =
    "The driver announces more than it has, or its device was replaced while it was asked.";
constexpr const char* staleObject =
    "The driver or the audio service was restarted since the program opened it. Start the program again.";
constexpr const char* inUse = "Another program uses the device for itself alone. Close it.";
constexpr const char* badFormat = "Windows has kept a format that the device cannot have. Setting another one in the "
                                  "sound settings may help.";
constexpr const char* wrongForm = "The driver's setup (INF) file has written it in another form. A newer driver may be "
                                  "better.";

struct CauseOf
{
    std::uint32_t code;
    std::string_view operation; ///< its beginning; empty for any
    std::string_view argument;  ///< empty for any
    const char* cause;
};

// The first row that fits counts.
constexpr std::array<CauseOf, 61> causes = {{
    {2, "wave", "", waveGone},
    {6, "wave", "", waveGone},
    {7, "wave", "", noMemory},
    {3, "wave", "", oldWaveDriver},
    {8, "wave", "", oldWaveDriver},
    {11, "wave", "", oldWaveDriver},
    {20, "wave", "", oldWaveDriver},
    {0x80070005, "IPropertyStore::", "", storeDenied},
    {0x80070005, "IMMDevice::OpenPropertyStore", "", storeDenied},
    {0x80030005, "", "", storeDenied},
    {0x80070005, "IMMDevice::Activate", "IAudioClient", privacy},
    {0x80070005, "IAudioClient::", "", privacy},
    {0x80070005, "", "", denied},
    {0x80004003, "", "", driverSilent},
    {0x8007000D, "IPropertyStore::", "", wrongForm},
    {0x80020005, "IPropertyStore::", "", wrongForm},
    {0x8007000D, "", "", driverSilent},
    {0x80004001, "", "", driverRefuses},
    {0x80070032, "", "", driverRefuses},
    {0x80070492, "", "", driverRefuses},
    {0x80004002, "", "", driverRefuses},
    {0x80070490, "IDeviceTopology::", "", miscounted},
    {0x80070490, "IPart", "", miscounted},
    {0x80070057, "IDeviceTopology::", "", miscounted},
    {0x80070490, "", "", deviceGone},
    {0x80070002, "IMMDevice", "", noDriver},
    {0x80070002, "IPropertyStore::", "", noDriver},
    {0xE000020B, "", "", noDriver},
    {0x800F020B, "", "", noDriver},
    {0xE0000225, "", "", noDriver},
    {0x800F0225, "", "", noDriver},
    {0xE0000204, "", "", noDriver},
    {0xE0000209, "", "", noDriver},
    {0x88890004, "", "", deviceGone},
    {0x88890026, "", "", deviceGone},
    {0x80070015, "", "", deviceGone},
    {0x8007048F, "", "", deviceGone},
    {0x80070651, "", "", deviceGone},
    {0x8889000A, "", "", inUse},
    {0x800700AA, "", "", inUse},
    {0x88890010, "", "", serviceStopped},
    {0x80070422, "", "", serviceStopped},
    {0x80070424, "", "", notInstalled},
    {0x80070426, "", "", serviceStopped},
    {0x800706BA, "", "", serviceStopped},
    {0x800706BE, "", "", serviceStopped},
    {0x800706BF, "", "", serviceStopped},
    {0x800706D9, "", "", serviceStopped},
    {0x800706BB, "", "", serviceBusy},
    {0x800705B4, "", "", serviceBusy},
    {0x80070079, "", "", serviceBusy},
    {0x8001011F, "", "", serviceBusy},
    {0x80010007, "", "", staleObject},
    {0x80010012, "", "", staleObject},
    {0x80010108, "", "", staleObject},
    {0x800401FD, "", "", staleObject},
    {0x80040154, "", "", notInstalled},
    {0x80040155, "", "", notInstalled},
    {0x88890008, "", "", badFormat},
    {0x8007000E, "", "", noMemory},
    {0x800705AA, "", "", noMemory},
}};

constexpr std::array<std::uint32_t, 5> codesOfPrograms = {0x800401F0, 0x800401F3, 0x80010106, 0x8001010D, 0x8001010E};

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}
}

std::string usualCause(std::uint32_t code, const std::string& operation, const std::string& argument, bool isPresent)
{
    for (const CauseOf& row : causes)
    {
        if (row.code == code && beginsWith(operation, row.operation) &&
            (row.argument.empty() || row.argument == argument))
            return row.cause;
    }
    if (std::find(codesOfPrograms.begin(), codesOfPrograms.end(), code) != codesOfPrograms.end())
        return programError;
    return isPresent ? driverFails : deviceGone;
}
}
