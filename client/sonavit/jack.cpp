#include "sonavit/jack.h"

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
struct Names
{
    int value;
    const char* key;
    const char* words;
};

constexpr Names unnamed = {-1, "unknown", "unknown"};

constexpr std::array<Names, 11> formFactors = {{{0, "remoteNetworkDevice", "remote network device"},
                                                {1, "speakers", "speakers"},
                                                {2, "lineLevel", "line level"},
                                                {3, "headphones", "headphones"},
                                                {4, "microphone", "microphone"},
                                                {5, "headset", "headset"},
                                                {6, "handset", "handset"},
                                                {7, "digitalPassthrough", "digital passthrough"},
                                                {8, "spdif", "S/PDIF"},
                                                {9, "digitalDisplay", "digital display"},
                                                {10, "unknown", "unknown"}}};

constexpr std::array<Names, 4> places = {{{0, "primaryBox", "primary box"},
                                          {1, "internal", "internal"},
                                          {2, "separate", "separate box"},
                                          {3, "other", "other"}}};

constexpr std::array<Names, 14> geometries = {{{1, "rear", "rear"},
                                               {2, "front", "front"},
                                               {3, "left", "left"},
                                               {4, "right", "right"},
                                               {5, "top", "top"},
                                               {6, "bottom", "bottom"},
                                               {7, "rearPanel", "rear panel"},
                                               {8, "riser", "riser"},
                                               {9, "insideMobileLid", "inside of the lid"},
                                               {10, "driveBay", "drive bay"},
                                               {11, "hdmi", "HDMI"},
                                               {12, "outsideMobileLid", "outside of the lid"},
                                               {13, "atapi", "ATAPI"},
                                               {14, "notApplicable", "not applicable"}}};

constexpr std::array<Names, 12> connections = {{{0, "unknown", "unknown"},
                                                {1, "miniJack", "3.5 mm jack"},
                                                {2, "quarterInch", "quarter inch jack"},
                                                {3, "atapiInternal", "ATAPI internal"},
                                                {4, "rca", "RCA"},
                                                {5, "optical", "optical"},
                                                {6, "otherDigital", "other digital"},
                                                {7, "otherAnalog", "other analog"},
                                                {8, "multichannelDin", "multichannel DIN"},
                                                {9, "xlr", "XLR"},
                                                {10, "rj11Modem", "RJ11 modem"},
                                                {11, "combination", "combination"}}};

constexpr std::array<Names, 4> ports = {{{0, "jack", "jack"},
                                         {1, "integratedDevice", "integrated device"},
                                         {2, "both", "jack and integrated device"},
                                         {3, "unknown", "unknown"}}};

template<std::size_t Size, class Enum>
const Names& namesOf(const std::array<Names, Size>& table, Enum value)
{
    for (const Names& names : table)
    {
        if (names.value == static_cast<int>(value))
            return names;
    }
    return unnamed;
}

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
    return std::string(key) + (key == unnamed.key ? " " + std::to_string(static_cast<int>(value)) : "");
}

/// What the jack is for: its kind, or else the kind of endpoint.
std::string purposeOf(const Jack& jack)
{
    if (jack.kind() != NodeKind::other)
        return wordsOf(jack.kind());
    if (!jack.formFactor || namesOf(formFactors, *jack.formFactor).key == std::string_view("unknown"))
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
    if (isPlaced && &namesOf(geometries, *geometry) != &unnamed)
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
    return namesOf(formFactors, value).key;
}

const char* keyOf(JackPlace value) noexcept
{
    return namesOf(places, value).key;
}

const char* keyOf(JackGeometry value) noexcept
{
    return namesOf(geometries, value).key;
}

const char* keyOf(JackConnection value) noexcept
{
    return namesOf(connections, value).key;
}

const char* keyOf(JackPort value) noexcept
{
    return namesOf(ports, value).key;
}

const char* wordsOf(FormFactor value) noexcept
{
    return namesOf(formFactors, value).words;
}

const char* wordsOf(JackPlace value) noexcept
{
    return namesOf(places, value).words;
}

const char* wordsOf(JackGeometry value) noexcept
{
    return namesOf(geometries, value).words;
}

const char* wordsOf(JackConnection value) noexcept
{
    return namesOf(connections, value).words;
}

const char* wordsOf(JackPort value) noexcept
{
    return namesOf(ports, value).words;
}
}
}
