#include "sonavit/reference.h"

#include "client/references/encoding.h"
#include "client/references/ranking.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
std::string_view withoutBlanks(std::string_view text) noexcept
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/// The candidate that Resolution::best() is about; the end if there is none.
std::vector<Candidate>::const_iterator firstToUse(const std::vector<Candidate>& candidates) noexcept
{
    const auto present =
        std::find_if(candidates.begin(), candidates.end(),
                     [](const Candidate& candidate) { return references::isPresent(candidate.place.endpoint); });
    return present != candidates.end() ? present : candidates.begin();
}

bool isAlone(const std::vector<Candidate>& candidates, std::vector<Candidate>::const_iterator candidate) noexcept
{
    const auto next = std::next(candidate);
    return next == candidates.end() || next->rank != candidate->rank;
}

/// "Speakers (Analog Audio): same endpoint, not present".
std::string sentenceOf(const Candidate& candidate)
{
    const Endpoint& endpoint = candidate.place.endpoint;
    std::string sentence = endpoint.title() + ": " + candidate.reason;
    if (endpoint.state() && !endpoint.isActive())
        sentence += std::string(", ") + wordsOf(*endpoint.state());
    return sentence;
}

std::string ambiguousSentence(const std::vector<Candidate>& candidates)
{
    const auto first = firstToUse(candidates);
    std::string sentence = "several endpoints fit equally well: ";
    for (auto candidate = first; candidate != candidates.end() && candidate->rank == first->rank; ++candidate)
        sentence += (candidate == first ? "" : "; ") + sentenceOf(*candidate);
    return sentence;
}
}

Reference::Reference(std::string text) : m_text(std::move(text)) {}

Result<Reference> Reference::parse(std::string_view text)
{
    const std::string_view found = withoutBlanks(text);
    const Result<references::Traits> traits = references::traitsIn(found);
    if (!traits)
        return traits.problem();
    return Reference(std::string(found));
}

bool operator==(const Reference& left, const Reference& right) noexcept
{
    return left.text() == right.text();
}

std::ostream& operator<<(std::ostream& out, const Reference& reference)
{
    return out << reference.text();
}

std::optional<CardEndpoint> Resolution::best() const
{
    if (candidates.empty())
        return std::nullopt;
    const auto candidate = firstToUse(candidates);
    return isAlone(candidates, candidate) ? std::optional<CardEndpoint>(candidate->place) : std::nullopt;
}

std::string Resolution::sentence() const
{
    if (candidates.empty())
        return "no endpoint fits";
    const auto use = firstToUse(candidates);
    if (kind == Kind::ambiguous)
        return ambiguousSentence(candidates);
    if (kind != Kind::exact || use == candidates.begin())
        return sentenceOf(*use);
    const std::string absent = sentenceOf(candidates.front()) + "; in its place ";
    return absent + (isAlone(candidates, use) ? sentenceOf(*use) : ambiguousSentence(candidates));
}

bool operator==(const Candidate& left, const Candidate& right)
{
    return left.evidence == right.evidence && left.rank == right.rank && left.reason == right.reason &&
           left.place == right.place;
}

bool operator==(const Resolution& left, const Resolution& right)
{
    return left.kind == right.kind && left.candidates == right.candidates;
}

Result<Reference> refer(const Snapshot& snapshot, const EndpointId& endpoint)
{
    if (!endpoint.isEmpty())
        for (const Card& card : snapshot.cards())
            for (const Endpoint& one : card.endpoints())
                if (one.id() == endpoint)
                    return Reference(references::textOf(references::traitsOf(card, one)));
    return Problem(Problem::Kind::notThere, "refer", endpoint.text(), "there is no endpoint " + endpoint.text());
}

Resolution resolve(const Snapshot& snapshot, const Reference& reference)
{
    Resolution resolution;
    const Result<references::Traits> kept = references::traitsIn(reference.text());
    if (!kept) // a reference that was moved from
        return resolution;
    resolution.candidates = references::candidatesIn(snapshot, *kept);
    if (resolution.candidates.empty())
        return resolution;
    if (resolution.candidates.front().evidence == Candidate::Evidence::endpointId)
        resolution.kind = Resolution::Kind::exact;
    else
        resolution.kind = resolution.best() ? Resolution::Kind::likely : Resolution::Kind::ambiguous;
    return resolution;
}

const char* keyOf(Resolution::Kind kind) noexcept
{
    switch (kind)
    {
    case Resolution::Kind::exact:
        return "exact";
    case Resolution::Kind::likely:
        return "likely";
    case Resolution::Kind::ambiguous:
        return "ambiguous";
    case Resolution::Kind::none:
        break;
    }
    return "none";
}

const char* keyOf(Candidate::Evidence evidence) noexcept
{
    switch (evidence)
    {
    case Candidate::Evidence::endpointId:
        return "endpointId";
    case Candidate::Evidence::serialNumber:
        return "serialNumber";
    case Candidate::Evidence::container:
        return "container";
    case Candidate::Evidence::instanceId:
        return "instanceId";
    case Candidate::Evidence::vendorAndProduct:
        return "vendorAndProduct";
    case Candidate::Evidence::name:
        break;
    }
    return "name";
}

std::ostream& operator<<(std::ostream& out, const Resolution& resolution)
{
    return out << resolution.sentence();
}
}
}
