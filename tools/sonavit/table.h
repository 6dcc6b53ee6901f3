/// Text in columns, painted where there are colours.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace sonavit
{
enum class Paint
{
    none,
    bold,
    dim,
    green,
    red,
    yellow,
    cyan
};

/// @p text between the sequences that paint it on a terminal; as it is without colours.
std::string painted(const std::string& text, Paint paint, bool hasColours);

/// Rows of cells under each other. It fits itself to a width: it first leaves out the columns that are only good to
/// have, then shortens the one column that may be shortened, and then leaves out more.
class Table
{
public:
    struct Column
    {
        enum class Align
        {
            left,
            right
        };

        Align align = Align::left;
        unsigned gap = 2;      ///< blanks before the column
        unsigned leaveOut = 0; ///< the higher, the earlier it is left out; 0 for never
        unsigned smallest = 0; ///< width to which it may be shortened; 0 for never
    };

    struct Cell
    {
        std::string text;
        Paint paint = Paint::none;
    };

    /// From this rank on a column is left out before any other is shortened.
    static constexpr unsigned goodToHave = 10;

    explicit Table(std::vector<Column> columns);

    /// @p cells may be fewer than the columns; what is missing is blank.
    void add(std::vector<Cell> cells);

    /// The rows without blanks at their ends. @param width 0 for no limit
    std::vector<std::string> lines(unsigned width, bool hasColours) const;

private:
    std::vector<std::size_t> naturalWidths() const;
    std::size_t totalWidth(const std::vector<std::size_t>& widths) const;
    void fit(std::vector<std::size_t>& widths, std::size_t width) const;
    bool leaveOut(std::vector<std::size_t>& widths, unsigned lowestRank) const;
    void shorten(std::vector<std::size_t>& widths, std::size_t excess) const;

    std::vector<Column> m_columns;
    std::vector<std::vector<Cell>> m_rows;
};
}
