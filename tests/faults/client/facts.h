/// @file
/// What an answer says, piece by piece, so that two answers can be compared.
#pragma once

#include <cstddef>
#include <iomanip>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace faults::client
{
/// The pieces of an answer by their names, such as "endpoint {0.0.0…}: state". A piece without a value is one that the
/// answer leaves open.
class Facts
{
public:
    /// The difference between an answer and the truth.
    struct Difference
    {
        std::vector<std::string> lost;  ///< what the answer leaves open or out, and the truth does not
        std::vector<std::string> wrong; ///< what the answer says otherwise, or invents
    };

    /// Adds a piece. Of several with one name the first one counts.
    template<class T>
    void add(const std::string& name, const T& value)
    {
        m_pieces.emplace(name, Piece{textOf(value), false});
    }

    template<class T>
    void add(const std::string& name, const std::optional<T>& value)
    {
        m_pieces.emplace(name, Piece{value ? std::optional<std::string>(textOf(*value)) : std::nullopt, false});
    }

    /// Adds a piece that is found in another way if the first one fails, so that it may then differ: such a difference
    /// counts as a loss.
    template<class T>
    void addDerived(const std::string& name, const T& value)
    {
        Facts facts;
        facts.add(name, value);
        for (auto& [key, piece] : facts.m_pieces)
            m_pieces.emplace(key, Piece{piece.value, true});
    }

    /// @param former what was right before: a piece that is still so counts as lost, not as wrong
    Difference from(const Facts& truth, const Facts& former = {}) const;
    std::size_t size() const { return m_pieces.size(); }

private:
    struct Piece
    {
        std::optional<std::string> value;
        bool isDerived = false;
    };

    template<class T>
    static std::string textOf(const T& value)
    {
        std::ostringstream out;
        out << std::boolalpha << std::setprecision(12) << value;
        return out.str();
    }

    std::optional<std::string> valueOf(const std::string& name) const;

    std::map<std::string, Piece> m_pieces;
};
}
