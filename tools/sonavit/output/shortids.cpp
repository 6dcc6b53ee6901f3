#include "tools/sonavit/output/shortids.h"

#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace sonavit::program
{
namespace
{
/// The beginning of the endpoint's own GUID: enough to name it by, as a rule.
std::string ownBeginning(const std::string& id)
{
    constexpr std::size_t length = 8;
    const std::size_t brace = id.rfind('{');
    return brace == std::string::npos ? id : id.substr(brace + 1, length);
}

std::size_t commonLength(const std::string& left, const std::string& right)
{
    const std::size_t length = std::min(left.size(), right.size());
    std::size_t common = 0;
    while (common < length && left[common] == right[common])
        ++common;
    return common;
}
}

std::map<std::string, ShortId> shortIds(const std::vector<Card>& cards)
{
    constexpr std::size_t shortest = 4;
    std::vector<std::pair<std::string, std::string>> sorted; // beginnings in lower case, whole ids
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints())
            sorted.emplace_back(lowerCase(ownBeginning(endpoint.id().text())), endpoint.id().text());
    }
    std::sort(sorted.begin(), sorted.end());
    std::map<std::string, ShortId> result;
    for (std::size_t i = 0; i < sorted.size(); ++i)
    {
        const auto& [beginning, id] = sorted[i];
        std::size_t common = i > 0 ? commonLength(beginning, sorted[i - 1].first) : 0;
        if (i + 1 < sorted.size())
            common = std::max(common, commonLength(beginning, sorted[i + 1].first));
        const bool isUnique = common < beginning.size();
        const std::string usual = isUnique ? ownBeginning(id) : id;
        result[id] = {printable(usual), isUnique ? printable(usual.substr(0, std::max(common + 1, shortest))) : ""};
    }
    return result;
}
}
