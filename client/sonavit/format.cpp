#include "sonavit/format.h"

#include "sonavit/text.h"

#include <array>
#include <ostream>

namespace sonavit
{
inline namespace v1
{
namespace
{
struct MaskName
{
    std::uint32_t mask;
    const char* name;
};

/// Bit by bit.
constexpr std::array<const char*, 18> speakerBits = {
    "front left",    "front right",          "front center",          "low frequency",    "back left",
    "back right",    "front left of center", "front right of center", "back center",      "side left",
    "side right",    "top center",           "top front left",        "top front center", "top front right",
    "top back left", "top back center",      "top back right"};

constexpr std::uint32_t mono = 0x4;
constexpr std::uint32_t frontCenter = 0x4;
constexpr std::uint32_t stereo = 0x3;
constexpr std::uint32_t backCenter = 0x100;
constexpr std::uint32_t quadraphonic = 0x33;
constexpr std::uint32_t surround51 = 0x60F;
constexpr std::uint32_t surround71 = 0x63F;

constexpr std::array<MaskName, 8> usualMasks = {{{0, "direct"},
                                                 {mono, "mono"},
                                                 {stereo, "stereo"},
                                                 {quadraphonic, "quadraphonic"},
                                                 {0x3F, "5.1"},
                                                 {surround51, "5.1 surround"},
                                                 {0xFF, "7.1"},
                                                 {surround71, "7.1 surround"}}};

/// For each number of channels, with side speakers for surround sound.
constexpr std::array<std::uint32_t, 9> masksOfChannels = {0,
                                                          mono,
                                                          stereo,
                                                          stereo | frontCenter,
                                                          quadraphonic,
                                                          quadraphonic | frontCenter,
                                                          surround51,
                                                          surround51 | backCenter,
                                                          surround71};

constexpr Guid integerSubFormat = {0x00000001, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
}

Format Format::integer(std::uint32_t bits, std::uint32_t rate, std::uint32_t channels)
{
    Format format;
    format.rate = rate;
    format.bits = bits;
    format.validBits = bits;
    format.channels = channels;
    format.speakers = channels < masksOfChannels.size() ? masksOfChannels[channels] : 0;
    format.subFormat = integerSubFormat;
    return format;
}

std::string Format::sentence() const
{
    std::string words = std::to_string(rate) + " Hz, " + std::to_string(validBits) + " bit";
    if (validBits != bits)
        words += " in " + std::to_string(bits);
    if (encoding == Encoding::floatingPoint)
        words += " float";
    words += ", " + text::counted(channels, "channel");
    if (speakers.value_or(0) != 0)
        words += " (" + speakerWords(*speakers) + ")";
    return words;
}

bool operator==(const Format& left, const Format& right) noexcept
{
    return left.rate == right.rate && left.bits == right.bits && left.validBits == right.validBits &&
           left.channels == right.channels && left.encoding == right.encoding && left.speakers == right.speakers &&
           left.subFormat == right.subFormat;
}

std::ostream& operator<<(std::ostream& out, const Format& format)
{
    text::Fields fields(out, "Format");
    fields.add("rate", format.rate).add("bits", format.bits).add("validBits", format.validBits);
    fields.add("channels", format.channels).add("encoding", format.encoding);
    if (format.speakers)
        fields.add("speakers", text::hexCode(*format.speakers).c_str());
    fields.add("subFormat", format.subFormat);
    return out;
}

const char* keyOf(Format::Encoding encoding) noexcept
{
    switch (encoding)
    {
    case Format::Encoding::integer:
        return "pcm";
    case Format::Encoding::floatingPoint:
        return "float";
    case Format::Encoding::other:
        break;
    }
    return "other";
}

std::ostream& operator<<(std::ostream& out, Format::Encoding encoding)
{
    return out << keyOf(encoding);
}

std::vector<std::string> speakerNames(std::uint32_t mask)
{
    std::vector<std::string> names;
    for (std::size_t bit = 0; bit < speakerBits.size(); ++bit)
    {
        if ((mask >> bit & 1u) != 0)
            names.emplace_back(speakerBits[bit]);
    }
    return names;
}

std::string speakerWords(std::uint32_t mask)
{
    for (const MaskName& usual : usualMasks)
    {
        if (usual.mask == mask)
            return usual.name;
    }
    const std::vector<std::string> names = speakerNames(mask);
    return names.empty() ? text::hexCode(mask) : text::enumeration(names);
}
}
}
