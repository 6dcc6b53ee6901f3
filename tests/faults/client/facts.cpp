#include "tests/faults/client/facts.h"

namespace faults::client
{
std::optional<std::string> Facts::valueOf(const std::string& name) const
{
    const auto found = m_pieces.find(name);
    return found == m_pieces.end() ? std::nullopt : found->second.value;
}

Facts::Difference Facts::from(const Facts& truth, const Facts& former) const
{
    Difference difference;
    for (const auto& [name, piece] : m_pieces)
    {
        const std::optional<std::string> real = truth.valueOf(name);
        if (piece.value == real)
            continue;
        const std::string sentence = name + ": " + piece.value.value_or("-") + " in place of " + real.value_or("-");
        const bool isLoss = !piece.value || piece.isDerived || piece.value == former.valueOf(name);
        (isLoss ? difference.lost : difference.wrong).push_back(sentence);
    }
    for (const auto& [name, piece] : truth.m_pieces)
    {
        if (piece.value && m_pieces.count(name) == 0)
            difference.lost.push_back(name + ": missing");
    }
    return difference;
}
}
