#include "client/references/encoding.h"

#include "client/references/base64url.h"
#include "client/references/hash.h"
#include "sonavit/problem.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <utility>

namespace sonavit::references
{
namespace
{
constexpr std::string_view prefix = "snv1:";
constexpr std::size_t checksumSize = 4;
constexpr unsigned char flowTag = 1;

/// A trait that is a string. Tags never change their meaning; new ones are added.
struct Field
{
    unsigned char tag;
    std::string Traits::*trait;
    std::size_t size; ///< of its bytes; 0 if it varies
};

constexpr std::array<Field, 13> fields = {{{2, &Traits::endpointId, 0},
                                           {3, &Traits::instanceId, 0},
                                           {4, &Traits::vendor, 0},
                                           {5, &Traits::product, 0},
                                           {6, &Traits::function, 0},
                                           {7, &Traits::serial, 0},
                                           {8, &Traits::container, 16},
                                           {9, &Traits::jackType, 16},
                                           {10, &Traits::formFactor, 2},
                                           {11, &Traits::jackPlace, 6},
                                           {12, &Traits::description, 0},
                                           {13, &Traits::interfaceName, 0},
                                           {14, &Traits::driver, 8}}};

constexpr std::size_t largestText = []
{
    // Tag and length of each field, and its bytes: the flow; two ids; vendor and product; function; serial number and
    // two names; two GUIDs; form factor; place of the jack; driver.
    constexpr std::size_t bytes = (2 + 1) + 2 * (2 + idLimit) + 2 * (2 + numberLimit) + (2 + functionLimit) +
                                  3 * (2 + nameLimit) + std::size_t{2} * (2 + 16) + (2 + 2) + (2 + 6) + (2 + 8) +
                                  checksumSize;
    return prefix.size() + (bytes * 8 + 5) / 6;
}();
static_assert(largestText <= textLimit);

char byteOf(std::size_t value) noexcept
{
    return static_cast<char>(static_cast<unsigned char>(value));
}

std::string checksumOf(std::string_view bytes)
{
    const std::uint32_t hash = hash32(bytes);
    std::string checksum;
    for (unsigned i = 0; i < checksumSize; ++i)
        checksum.push_back(byteOf((hash >> (8 * i)) & 0xFFU));
    return checksum;
}

void appendField(std::string& bytes, unsigned char tag, std::string_view value)
{
    if (value.empty())
        return;
    bytes.push_back(byteOf(tag));
    bytes.push_back(byteOf(value.size()));
    bytes.append(value);
}

Problem unreadable(std::string sentence)
{
    return Problem(Problem::Kind::unreadable, "Reference::parse", std::string(), std::move(sentence));
}

const Field* fieldWith(unsigned char tag) noexcept
{
    for (const Field& field : fields)
        if (field.tag == tag)
            return &field;
    return nullptr;
}

/// Takes one field into @p traits. @return false if its content is none
bool takeField(unsigned char tag, std::string_view value, Traits& traits)
{
    if (tag == flowTag)
    {
        const bool isOutput = value == std::string_view("\0", 1);
        traits.flow = isOutput ? Flow::output : Flow::input;
        return isOutput || value == std::string_view("\1", 1);
    }
    const Field* const field = fieldWith(tag);
    if (field == nullptr)
        return true;
    if (value.empty() || (field->size != 0 && value.size() != field->size))
        return false;
    traits.*(field->trait) = std::string(value);
    return true;
}

/// No value if the bytes are no sequence of fields, each at most once, with a flow.
std::optional<Traits> traitsInBytes(std::string_view bytes)
{
    Traits traits;
    std::bitset<256> met;
    while (!bytes.empty())
    {
        if (bytes.size() < 2)
            return std::nullopt;
        const auto tag = static_cast<unsigned char>(bytes[0]);
        const auto size = static_cast<unsigned char>(bytes[1]);
        if (bytes.size() - 2 < size || met.test(tag) || !takeField(tag, bytes.substr(2, size), traits))
            return std::nullopt;
        met.set(tag);
        bytes.remove_prefix(std::size_t(2) + size);
    }
    if (!met.test(flowTag))
        return std::nullopt;
    return traits;
}
}

std::string textOf(const Traits& traits)
{
    std::string bytes;
    appendField(bytes, flowTag, std::string(1, traits.flow == Flow::output ? '\0' : '\1'));
    for (const Field& field : fields)
        appendField(bytes, field.tag, traits.*(field.trait));
    bytes += checksumOf(bytes);
    return std::string(prefix) + base64urlOf(bytes);
}

Result<Traits> traitsIn(std::string_view text)
{
    if (text.substr(0, prefix.size()) != prefix)
        return unreadable("a reference begins with \"snv1:\"");
    if (text.size() > textLimit)
        return unreadable("a reference has at most 512 characters");
    const std::optional<std::string> decoded = bytesInBase64url(text.substr(prefix.size()));
    if (!decoded && isBase64url(text.substr(prefix.size())))
        return unreadable("the reference is incomplete or was changed");
    if (!decoded)
        return unreadable("after \"snv1:\" a reference has the characters A-Z, a-z, 0-9, - and _ alone");
    if (decoded->size() < checksumSize)
        return unreadable("the reference is incomplete");
    const std::string_view bytes = std::string_view(*decoded).substr(0, decoded->size() - checksumSize);
    if (decoded->substr(bytes.size()) != checksumOf(bytes))
        return unreadable("the reference is incomplete or was changed");
    std::optional<Traits> traits = traitsInBytes(bytes);
    if (!traits)
        return unreadable("the fields of the reference do not fit together");
    return std::move(*traits);
}
}
