#include "client/anonymity/secrets.h"

#include "client/anonymity/letters.h"
#include "client/references/deviceidentity.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <set>
#include <utility>

namespace sonavit::anonymity
{
namespace
{
constexpr std::size_t longSerial = 6; ///< characters; a shorter one occurs by chance
constexpr std::size_t longName = 4;
constexpr std::size_t addressDigits = 12;

std::size_t varietyOf(const std::u32string& text)
{
    return std::set<char32_t>(text.begin(), text.end()).size();
}

bool isHex(const std::u32string& text)
{
    return std::all_of(text.begin(), text.end(), isHexDigit);
}

bool isCounter(const std::u32string& element)
{
    return element.size() < longSerial && std::all_of(element.begin(), element.end(), isDigit);
}

bool isAlphanumeric(char32_t character)
{
    return isDigit(character) || isLetter(character);
}

/// The addresses in an instance id: "dev_28e14ca0b1f7", "7&3b5c1d2&0&28e14ca0b1f7_c00000000". The end of a GUID is
/// none, nor are zeros, which mean no device.
std::vector<std::u32string> addressesIn(const std::u32string& id)
{
    std::vector<std::u32string> addresses;
    for (std::size_t begin = 0; begin < id.size();)
    {
        const auto from = id.begin() + static_cast<std::ptrdiff_t>(begin);
        const std::u32string run(from, std::find_if_not(from, id.end(), isAlphanumeric));
        const bool isInGuid = begin > 0 && id[begin - 1] == U'-';
        if (run.size() == addressDigits && isHex(run) && !isInGuid && varietyOf(run) > 2)
            addresses.push_back(run);
        begin += run.size() + 1;
    }
    return addresses;
}

/// Whether a driver or Windows has made up the last element of an id: from the place of the device, for a device in
/// software, or by counting.
bool isMadeUp(const std::u32string& element, const references::DeviceIdentity& identity)
{
    if (element.size() < 2)
        return identity.serial.empty();
    const bool isDevice = !identity.vendor.empty() && !identity.product.empty() && identity.function.empty();
    return element[1] == U'&' || element[0] == U'{' || (!isDevice && isCounter(element));
}

class Search final : public PlaceVisitor
{
public:
    std::vector<Secret> take() { return std::move(m_secrets); }

    void instance(const std::string& id);
    void device(const sim::Device& device);
    void name(const std::string& name);

    /// Ids that contain an instance id, and names of devices.
    void text(std::string& text) override;
    void guid(GUID&) override {}
    void number(std::uint64_t&) override {}
    void bytes(std::vector<std::uint8_t>&) override {}

private:
    void properties(const sim::Properties& properties);
    void container(const GUID& guid);
    void serial(const std::u32string& element);
    void owners(const std::u32string& deviceName);
    void add(Secret::Kind kind, const std::u32string& text, Extent extent);

    std::vector<Secret> m_secrets;
    std::set<std::u32string> m_known;
};

void Search::add(Secret::Kind kind, const std::u32string& text, Extent extent)
{
    if (m_known.insert(text).second)
        m_secrets.push_back({kind, text, extent});
}

void Search::instance(const std::string& id)
{
    const std::u32string characters = folded(charactersOf(id));
    const std::vector<std::u32string> addresses = addressesIn(characters);
    for (const std::u32string& address : addresses)
        add(Secret::Kind::address, address, Extent::anywhere);
    const std::size_t first = characters.find(U'\\');
    const std::size_t last = characters.rfind(U'\\');
    if (first == std::u32string::npos || first == last)
        return;
    const references::DeviceIdentity identity = references::identityOf(id, std::nullopt);
    const std::u32string element = characters.substr(last + 1);
    const bool isAddress = identity.serial.empty() && !addressesIn(element).empty();
    if (!isAddress && !isMadeUp(element, identity))
        serial(element);
}

/// The platform ends the instance id in an instance path at a dot, so an element with dots is taken in parts.
void Search::serial(const std::u32string& element)
{
    for (std::size_t begin = 0; begin < element.size();)
    {
        const std::u32string part = element.substr(begin, element.find(U'.', begin) - begin);
        const bool isLong = part.size() >= longSerial && varietyOf(part) > 2;
        if (!part.empty())
            add(Secret::Kind::serial, part, isLong ? Extent::anywhere : Extent::element);
        begin += part.size() + 1;
    }
}

void Search::device(const sim::Device& device)
{
    properties(device.properties);
    properties(device.unlistedProperties);
}

void Search::properties(const sim::Properties& properties)
{
    for (const sim::Property& property : properties)
    {
        const std::string text = property.value.text.value_or("");
        if (sim::sameKey(property.key, sim::keys::instancePath))
            instance(sim::instanceOfPath(text));
        if (sim::sameKey(property.key, sim::keys::instanceId))
            instance(text);
        if (!sim::sameKey(property.key, sim::keys::containerId) &&
            !sim::sameKey(property.key, sim::keys::baseContainerId))
            continue;
        if (property.value.tag == VT_CLSID)
            container(property.value.guid);
        else if (const std::optional<GUID> guid = sim::guidFromText(text))
            container(*guid);
    }
}

/// The null GUID means none, and all devices that are parts of the computer share another one.
void Search::container(const GUID& guid)
{
    const GUID ofComputer = sim::containerOf("", std::nullopt);
    if (IsEqualGUID(guid, GUID{}) || IsEqualGUID(guid, ofComputer))
        return;
    const std::string text = sim::guidText(guid);
    add(Secret::Kind::container, folded(charactersOf(text.substr(1, text.size() - 2))), Extent::anywhere);
}

void Search::text(std::string& text)
{
    if (const std::optional<std::string> id = sim::instanceOfAdapter(text))
        instance(*id);
    else if (text.find('\\') == std::string::npos)
        owners(folded(charactersOf(text)));
    else if (!references::identityOf(text, std::nullopt).product.empty())
        instance(references::instanceIdIn(text).empty() ? text : sim::instanceOfPath(text));
}

/// "Anna" of "Anna's AirPods", with either apostrophe.
void Search::owners(const std::u32string& deviceName)
{
    for (std::size_t at = deviceName.find_first_of(U"'\u2019"); at != std::u32string::npos;
         at = deviceName.find_first_of(U"'\u2019", at + 1))
    {
        std::size_t begin = at;
        while (begin > 0 && (isLetter(deviceName[begin - 1]) || deviceName[begin - 1] == U'-'))
            --begin;
        const bool endsInS = begin < at && deviceName[at - 1] == U's';
        const char32_t next = at + 1 < deviceName.size() ? deviceName[at + 1] : U' ';
        const char32_t afterNext = at + 2 < deviceName.size() ? deviceName[at + 2] : U' ';
        if ((next == U's' && !isAlphanumeric(afterNext)) || (endsInS && next == U' '))
            name(ofCharacters(deviceName.substr(begin, at - begin)));
    }
}

/// A short name, or one of hexadecimal digits, occurs by chance.
void Search::name(const std::string& name)
{
    const std::u32string text = folded(charactersOf(name));
    if (!std::any_of(text.begin(), text.end(), isAlphanumeric))
        return;
    const bool isLong = text.size() >= longName && !isHex(text);
    add(Secret::Kind::name, text, isLong ? Extent::anywhere : Extent::word);
}
}

std::vector<Secret> secretsOf(sim::Machine& machine, const std::vector<std::string>& names)
{
    Search search;
    for (const std::string& name : names)
        search.name(name);
    for (const sim::DeviceInstance& instance : machine.deviceInstances)
    {
        search.instance(instance.id);
        search.instance(instance.parent.value_or(""));
    }
    for (const sim::Endpoint& endpoint : machine.endpoints)
        search.device(endpoint);
    for (const sim::Adapter& adapter : machine.adapters)
        search.device(adapter);
    visitPlaces(machine, search);
    return search.take();
}
}
