#include "sonavit/jack.h"

#include "sonavit/enumnames.h"
#include "sonavit/text.h"

#include <array>
#include <ostream>
#include <string_view>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr std::array<EnumName, 11> formFactors = {{{"remoteNetworkDevice", "remote network device"},
                                                   {"speakers", "speakers"},
                                                   {"lineLevel", "line level"},
                                                   {"headphones", "headphones"},
                                                   {"microphone", "microphone"},
                                                   {"headset", "headset"},
                                                   {"handset", "handset"},
                                                   {"digitalPassthrough", "digital passthrough"},
                                                   {"spdif", "S/PDIF"},
                                                   {"digitalDisplay", "digital display"},
                                                   {"unknown", "unknown"}}};

constexpr std::array<EnumName, 4> places = {
    {{"primaryBox", "primary box"}, {"internal", "internal"}, {"separate", "separate box"}, {"other", "other"}}};

constexpr std::array<EnumName, 14> geometries = {{{"rear", "rear"},
                                                  {"front", "front"},
                                                  {"left", "left"},
                                                  {"right", "right"},
                                                  {"top", "top"},
                                                  {"bottom", "bottom"},
                                                  {"rearPanel", "rear panel"},
                                                  {"riser", "riser"},
                                                  {"insideMobileLid", "inside of the lid"},
                                                  {"driveBay", "drive bay"},
                                                  {"hdmi", "HDMI"},
                                                  {"outsideMobileLid", "outside of the lid"},
                                                  {"atapi", "ATAPI"},
                                                  {"notApplicable", "not applicable"}}};

constexpr std::array<EnumName, 12> connections = {{{"unknown", "unknown"},
                                                   {"miniJack", "3.5 mm jack"},
                                                   {"quarterInch", "quarter inch jack"},
                                                   {"atapiInternal", "ATAPI internal"},
                                                   {"rca", "RCA"},
                                                   {"optical", "optical"},
                                                   {"otherDigital", "other digital"},
                                                   {"otherAnalog", "other analog"},
                                                   {"multichannelDin", "multichannel DIN"},
                                                   {"xlr", "XLR"},
                                                   {"rj11Modem", "RJ11 modem"},
                                                   {"combination", "combination"}}};

constexpr std::array<EnumName, 4> ports = {{{"jack", "jack"},
                                            {"integratedDevice", "integrated device"},
                                            {"both", "jack and integrated device"},
                                            {"unknown", "unknown"}}};

/// The geometry alone has no name for 0.
constexpr int firstGeometry = 1;

struct ColourName
{
    std::uint32_t number; ///< 0xRRGGBB
    const char* name;
};

/// Drivers describe the colours that the makers of computers agreed on for jacks, either with the colour of that name
/// or with the shade that the jack has.
constexpr std::array<ColourName, 24> colourNames = {
    {{0x000000, "black"},      {0xFFFFFF, "white"},      {0x808080, "grey"},       {0xC0C0C0, "silver"},
     {0x0000FF, "blue"},       {0x00FF00, "green"},      {0x008000, "green"},      {0xFF0000, "red"},
     {0xFFA500, "orange"},     {0xFF8000, "orange"},     {0xFFFF00, "yellow"},     {0x800080, "purple"},
     {0xFFC0CB, "pink"},       {0xFF80C0, "pink"},       {0x32CD32, "lime green"}, {0xB3C98C, "lime green"},
     {0xBFFF00, "lime green"}, {0xADD8E6, "light blue"}, {0x87CEFA, "light blue"}, {0xFFD700, "gold"},
     {0x800000, "brown"},      {0xA52A2A, "brown"},      {0x808000, "olive"},      {0x008080, "teal"}}};

std::uint32_t numberOf(const Colour& colour)
{
    return std::uint32_t{colour.red} << 16 | std::uint32_t{colour.green} << 8 | colour.blue;
}

/// The key of a value, and the number of one without a name.
template<class Enum>
std::string named(Enum value)
{
    const std::string_view key = keyOf(value);
    return std::string(key) + (key == unknownKey ? " " + std::to_string(static_cast<int>(value)) : "");
}

/// What the jack is for: its kind, or else the kind of endpoint.
std::string purposeOf(const Jack& jack)
{
    if (jack.kind() != NodeKind::other)
        return wordsOf(jack.kind());
    if (!jack.formFactor || keyOf(*jack.formFactor) == std::string_view(unknownKey))
        return "Jack";
    std::string words = wordsOf(*jack.formFactor);
    if (words[0] >= 'a' && words[0] <= 'z')
        words[0] = static_cast<char>(words[0] - 'a' + 'A');
    return words;
}
}

std::string Colour::name() const
{
    const std::uint32_t number = numberOf(*this);
    for (const ColourName& known : colourNames)
    {
        if (known.number == number)
            return known.name;
    }
    return "#" + text::hexCode(number).substr(4);
}

NodeKind Jack::kind() const noexcept
{
    return type ? kindOf(*type) : NodeKind::other;
}

std::string Jack::sentence() const
{
    std::string result = purposeOf(*this);
    if (colour && numberOf(*colour) != 0)
        result += ", " + colour->name();
    const bool isPlaced = geometry && *geometry != JackGeometry::notApplicable;
    if (isPlaced && keyOf(*geometry) != std::string_view(unknownKey))
        result += std::string(", ") + wordsOf(*geometry);
    if (isConnected == std::optional<bool>(false))
        result += ", nothing plugged in";
    return result;
}

bool operator==(const Colour& left, const Colour& right) noexcept
{
    return numberOf(left) == numberOf(right);
}

bool operator==(const Jack& left, const Jack& right) noexcept
{
    return left.type == right.type && left.formFactor == right.formFactor && left.channels == right.channels &&
           left.colour == right.colour && left.place == right.place && left.geometry == right.geometry &&
           left.connection == right.connection && left.port == right.port && left.isConnected == right.isConnected;
}

std::ostream& operator<<(std::ostream& out, const Colour& colour)
{
    return out << colour.name();
}

std::ostream& operator<<(std::ostream& out, const Jack& jack)
{
    text::Fields fields(out, "Jack");
    fields.add("type", jack.type);
    if (jack.formFactor)
        fields.add("formFactor", named(*jack.formFactor).c_str());
    fields.add("channels", jack.channels);
    if (jack.colour)
        fields.add("colour", jack.colour->name().c_str());
    if (jack.place)
        fields.add("place", named(*jack.place).c_str());
    if (jack.geometry)
        fields.add("geometry", named(*jack.geometry).c_str());
    if (jack.connection)
        fields.add("connection", named(*jack.connection).c_str());
    if (jack.port)
        fields.add("port", named(*jack.port).c_str());
    fields.add("isConnected", jack.isConnected);
    return out;
}

const char* keyOf(FormFactor value) noexcept
{
    return nameOf(formFactors, value, unknownName).key;
}

const char* keyOf(JackPlace value) noexcept
{
    return nameOf(places, value, unknownName).key;
}

const char* keyOf(JackGeometry value) noexcept
{
    return nameOf(geometries, value, unknownName, firstGeometry).key;
}

const char* keyOf(JackConnection value) noexcept
{
    return nameOf(connections, value, unknownName).key;
}

const char* keyOf(JackPort value) noexcept
{
    return nameOf(ports, value, unknownName).key;
}

const char* wordsOf(FormFactor value) noexcept
{
    return nameOf(formFactors, value, unknownName).words;
}

const char* wordsOf(JackPlace value) noexcept
{
    return nameOf(places, value, unknownName).words;
}

const char* wordsOf(JackGeometry value) noexcept
{
    return nameOf(geometries, value, unknownName, firstGeometry).words;
}

const char* wordsOf(JackConnection value) noexcept
{
    return nameOf(connections, value, unknownName).words;
}

const char* wordsOf(JackPort value) noexcept
{
    return nameOf(ports, value, unknownName).words;
}

std::ostream& operator<<(std::ostream& out, FormFactor value)
{
    return out << wordsOf(value);
}

std::ostream& operator<<(std::ostream& out, JackPlace value)
{
    return out << wordsOf(value);
}

std::ostream& operator<<(std::ostream& out, JackGeometry value)
{
    return out << wordsOf(value);
}

std::ostream& operator<<(std::ostream& out, JackConnection value)
{
    return out << wordsOf(value);
}

std::ostream& operator<<(std::ostream& out, JackPort value)
{
    return out << wordsOf(value);
}
}
}
