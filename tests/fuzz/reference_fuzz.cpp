/// A text is a reference that keeps its text and means endpoints of a computer in their order, or it is refused by one
/// sentence. Half of the inputs are fields, to which the prefix and the right checksum are added.
#include "client/references/base64url.h"
#include "client/references/encoding.h"
#include "client/references/hash.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"
#include "sonavit/reference.h"
#include "sonavit/system.h"
#include "tests/fuzz/support/check.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace
{
using fuzz::check;
using sonavit::Candidate;
using sonavit::Reference;
using sonavit::Resolution;
using sonavit::Snapshot;
namespace references = sonavit::references;

Snapshot snapshotOf(const char* machine)
{
    const sim::Simulation simulation(sim::findMachine(machine));
    const sonavit::System system;
    return system.snapshot();
}

/// A computer with two devices of one model, serial numbers and endpoints that are not present.
const Snapshot& computer()
{
    static const Snapshot snapshot = snapshotOf("studio");
    return snapshot;
}

std::string withoutBlanks(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

std::string textOfFields(const std::string& fields)
{
    std::string bytes = fields;
    const std::uint32_t checksum = references::hash32(fields);
    for (unsigned int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(checksum >> shift & 0xFF);
    return "snv1:" + references::base64urlOf(bytes);
}

/// Bytes and their text are one another's.
void checkBase64url(const std::string& input)
{
    check(references::bytesInBase64url(references::base64urlOf(input)) == input, "bytes that are written can be read");
    const std::optional<std::string> bytes = references::bytesInBase64url(input);
    check(!bytes || references::base64urlOf(*bytes) == input, "bytes have one text");
}

bool equal(const references::Traits& left, const references::Traits& right)
{
    return references::textOf(left) == references::textOf(right);
}

void checkTraits(const Reference& reference)
{
    const sonavit::Result<references::Traits> traits = references::traitsIn(reference.text());
    check(static_cast<bool>(traits), "a reference has traits");
    const std::string again = references::textOf(*traits);
    check(again.size() <= reference.text().size(), "what is not known is not written");
    check(equal(*references::traitsIn(again), *traits), "traits that are written are read again");
}

const sonavit::Endpoint& endpointOf(const Candidate& candidate)
{
    return candidate.place.endpoint;
}

/// The first one that is present, or the first one of all; none if it has a rival.
std::optional<sonavit::EndpointId> bestOf(const std::vector<Candidate>& candidates)
{
    if (candidates.empty())
        return std::nullopt;
    const auto isPresent = [](const Candidate& candidate)
    { return endpointOf(candidate).state() != sonavit::State::notPresent; };
    auto best = std::find_if(candidates.begin(), candidates.end(), isPresent);
    if (best == candidates.end())
        best = candidates.begin();
    const auto hasRank = [&](const Candidate& candidate) { return candidate.rank == best->rank; };
    if (std::count_if(candidates.begin(), candidates.end(), hasRank) > 1)
        return std::nullopt;
    return endpointOf(*best).id();
}

void checkResolution(const Resolution& resolution)
{
    const std::vector<Candidate>& candidates = resolution.candidates;
    check((resolution.kind == Resolution::Kind::none) == candidates.empty(), "none means that there is no candidate");
    check(candidates.empty() || candidates.front().rank == 0, "the best one has rank 0");
    check(std::is_sorted(candidates.begin(), candidates.end(),
                         [](const Candidate& left, const Candidate& right) { return left.rank < right.rank; }),
          "the best one is first");
    for (const Candidate& candidate : candidates)
    {
        check(computer().endpoint(endpointOf(candidate).id()) == endpointOf(candidate),
              "a candidate is of the computer");
        check(endpointOf(candidate).flow() == endpointOf(candidates.front()).flow(),
              "all have the flow of the reference");
        check(fuzz::isOneLine(candidate.reason), "a candidate has a reason");
    }
    const std::optional<sonavit::CardEndpoint> best = resolution.best();
    const std::optional<sonavit::EndpointId> bestId = best ? std::optional(best->endpoint.id()) : std::nullopt;
    check(bestId == bestOf(candidates), "the best one is the first that is present, unless it has a rival");
    check(fuzz::isOneLine(resolution.sentence()), "a resolution is one sentence");
}

void checkText(const std::string& text)
{
    const sonavit::Result<Reference> reference = Reference::parse(text);
    if (!reference)
    {
        check(reference.problem().kind() == sonavit::Problem::Kind::unreadable,
              "a refusal says that it is no reference");
        check(fuzz::isOneLine(reference.problem().sentence()), "a refusal is one sentence");
        return;
    }
    check(reference->text() == withoutBlanks(text), "a reference keeps its text");
    check(reference->text().size() <= references::textLimit, "a reference has at most 512 characters");
    checkTraits(*reference);
    checkResolution(resolve(computer(), *reference));
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string input(reinterpret_cast<const char*>(data) + 1, size - 1);
    checkBase64url(input);
    checkText(data[0] % 2 == 0 ? input : textOfFields(input));
    return 0;
}
