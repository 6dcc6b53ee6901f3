#include "tools/sonavit/systemreason.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace sonavit::program
{
namespace
{
struct KnownResult
{
    std::uint32_t result;
    const char* words;
};

constexpr std::array<KnownResult, 14> knownResults = {{{0x80004001, "not implemented"},
                                                       {0x80004002, "no such interface"},
                                                       {0x80004003, "success without a result"},
                                                       {0x80004005, "unspecified error"},
                                                       {0x8000FFFF, "unexpected failure"},
                                                       {0x800401F0, "COM is not initialized"},
                                                       {0x80040154, "class not registered"},
                                                       {0x80070005, "access denied"},
                                                       {0x8007000E, "out of memory"},
                                                       {0x80070057, "invalid argument"},
                                                       {0x80070490, "not found"},
                                                       {0x800706BA, "the audio service is not available"},
                                                       {0x88890004, "the device is no longer present"},
                                                       {0x88890010, "the audio service is not running"}}};
}

std::string reasonText(HRESULT result)
{
    std::array<char, 16> code{};
    std::snprintf(code.data(), code.size(), "0x%08X", static_cast<unsigned>(result));
    for (const KnownResult& known : knownResults)
    {
        if (known.result == static_cast<std::uint32_t>(result))
            return std::string(code.data()) + ", " + known.words;
    }
    return code.data();
}
}
