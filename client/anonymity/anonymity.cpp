#include "client/anonymity/anonymity.h"

#include "client/anonymity/letters.h"
#include "client/anonymity/secrets.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace sonavit::anonymity
{
namespace
{
/// All strings of a machine, in lower case, and its GUIDs.
class Texts final : public PlaceVisitor
{
public:
    void text(std::string& text) override { add(text); }
    void guid(GUID& guid) override { add(sim::guidText(guid)); }
    void number(std::uint64_t&) override {}
    void bytes(std::vector<std::uint8_t>&) override {}

    bool contain(const std::u32string& text, Extent extent) const
    {
        for (std::size_t at = m_all.find(text); at != std::u32string::npos; at = m_all.find(text, at + 1))
            if (isAt(m_all, at, text, extent))
                return true;
        return false;
    }

private:
    void add(const std::string& text) { m_all.append(folded(charactersOf(text))).append(1, U'\n'); }

    std::u32string m_all;
};

/// Numbers that look random and are the same on every computer.
class Numbers
{
public:
    std::uint32_t next()
    {
        m_state = m_state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::uint32_t>(m_state >> 33);
    }

private:
    std::uint64_t m_state = 1;
};

/// Invents what replaces the secrets of a machine. It depends on their order and form and on nothing else, so that
/// an original cannot be found by trying all of them.
class Invention
{
public:
    Invention(const Texts& texts, const std::vector<Secret>& secrets) : m_texts(texts), m_secrets(secrets) {}

    /// No value if there is nothing else of that form, as for a name of signs.
    std::optional<std::u32string> replacementOf(const Secret& secret);

private:
    std::u32string candidate(const std::u32string& original);
    bool isFree(const std::u32string& candidate, Extent extent) const;

    static constexpr int attempts = 200;

    const Texts& m_texts;
    const std::vector<Secret>& m_secrets;
    Numbers m_numbers;
    std::vector<std::u32string> m_taken;
};

std::optional<std::u32string> Invention::replacementOf(const Secret& secret)
{
    for (int attempt = 0; attempt < attempts; ++attempt)
    {
        const std::u32string text = candidate(secret.text);
        if (!isFree(text, secret.extent))
            continue;
        m_taken.push_back(text);
        return text;
    }
    return std::nullopt;
}

std::u32string Invention::candidate(const std::u32string& original)
{
    const auto isOther = [](char32_t character) { return isLetter(character) && !isHexDigit(character); };
    const bool isHex = std::none_of(original.begin(), original.end(), isOther);
    std::u32string text = original;
    for (char32_t& character : text)
        character = otherOfItsKind(character, m_numbers.next(), isHex);
    return text;
}

bool Invention::isFree(const std::u32string& candidate, Extent extent) const
{
    const auto isIn = [&](const Secret& secret)
    {
        const bool counts = secret.extent == Extent::anywhere || secret.text.size() == candidate.size();
        return counts && candidate.find(secret.text) != std::u32string::npos;
    };
    return std::find(m_taken.begin(), m_taken.end(), candidate) == m_taken.end() &&
           std::none_of(m_secrets.begin(), m_secrets.end(), isIn) && !m_texts.contain(candidate, extent);
}

/// "28:e1:4c:a0:b1:f7".
std::u32string inPairs(const std::u32string& address, char32_t separator)
{
    std::u32string text;
    for (std::size_t index = 0; index < address.size(); ++index)
        text.append(index % 2 == 0 && index > 0 ? 1 : 0, separator).append(1, address[index]);
    return text;
}

std::vector<std::uint8_t> bytesOf(const std::u32string& digits)
{
    std::vector<std::uint8_t> bytes;
    for (std::size_t index = 0; index + 1 < digits.size(); index += 2)
        bytes.push_back(static_cast<std::uint8_t>(sim::hexDigit(static_cast<char>(digits[index])) * 16 +
                                                  sim::hexDigit(static_cast<char>(digits[index + 1]))));
    return bytes;
}

std::uint64_t numberOf(const std::vector<std::uint8_t>& bytes)
{
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes)
        number = number << 8 | byte;
    return number;
}

/// Further forms of an address: with separators, as bytes in either order, and as a number.
void addAddress(Rules& rules, const std::u32string& original, const std::u32string& replacement)
{
    for (const char32_t separator : {U':', U'-'})
        rules.add({inPairs(original, separator), inPairs(replacement, separator), Extent::anywhere});
    std::vector<std::uint8_t> from = bytesOf(original);
    std::vector<std::uint8_t> to = bytesOf(replacement);
    rules.addBytes(from, to);
    rules.addNumber(numberOf(from), numberOf(to));
    std::reverse(from.begin(), from.end());
    std::reverse(to.begin(), to.end());
    rules.addBytes(from, to);
}

/// The bytes of a GUID in memory: its first three numbers begin with their last byte.
std::vector<std::uint8_t> memoryOf(const std::u32string& digits)
{
    std::vector<std::uint8_t> bytes = bytesOf(digits);
    std::reverse(bytes.begin(), bytes.begin() + 4);
    std::reverse(bytes.begin() + 4, bytes.begin() + 6);
    std::reverse(bytes.begin() + 6, bytes.begin() + 8);
    return bytes;
}

void addContainer(Rules& rules, std::u32string original, std::u32string replacement)
{
    for (std::u32string* const text : {&original, &replacement})
        text->erase(std::remove(text->begin(), text->end(), U'-'), text->end());
    rules.addBytes(memoryOf(original), memoryOf(replacement));
    rules.add({std::move(original), std::move(replacement), Extent::anywhere});
}

Rules rulesFor(const Texts& texts, const std::vector<Secret>& secrets)
{
    Rules rules;
    Invention invention(texts, secrets);
    for (const Secret& secret : secrets)
    {
        const std::optional<std::u32string> replacement = invention.replacementOf(secret);
        if (!replacement)
            continue;
        rules.add({secret.text, *replacement, secret.extent});
        if (asBytes(secret.text) != secret.text && !asBytes(secret.text).empty())
            rules.add({asBytes(secret.text), asBytes(*replacement), secret.extent});
        if (secret.kind == Secret::Kind::address)
            addAddress(rules, secret.text, *replacement);
        if (secret.kind == Secret::Kind::container)
            addContainer(rules, secret.text, *replacement);
    }
    return rules;
}
}

void makeAnonymous(sim::Machine& machine, const std::vector<std::string>& names,
                   const std::vector<std::string*>& reports)
{
    const std::vector<Secret> secrets = secretsOf(machine, names);
    Texts texts;
    visitPlaces(machine, texts);
    const Rules rules = rulesFor(texts, secrets);
    Replacing replacing(rules);
    visitPlaces(machine, replacing);
    for (std::string* const report : reports)
        replacing.text(*report);
}
}
