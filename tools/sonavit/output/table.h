/// Cells in columns, coloured on a terminal that shows colours.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace sonavit::program
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

/// @p text between the sequences that colour it on a terminal; @p text itself without colours.
std::string painted(const std::string& text, Paint paint, bool hasColours);

/// Rows of cells that fit themselves to a width.
///
/// Where the room is short, decoration goes first: columns that are only good to have, the long form of cells, the gaps
/// between columns, and decorating columns. Then columns are shortened, then left out, the highest rank first. A column
/// of rank 0 is never left out, so a table may be wider than the terminal in the end.
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
        unsigned leaveOut = 0; ///< the higher, the earlier the column is left out; 0 for never
        unsigned smallest = 0; ///< width to which it is shortened before others are left out; 0 for never
        unsigned least = 0;    ///< width to which it is shortened after that; 0 for never
        const char* name = ""; ///< in leftOut(); empty for a column that says nothing of its own
    };

    struct Cell
    {
        std::string text;
        Paint paint = Paint::none;
        std::string compact =
            {}; ///< shown instead of the text where the room is short; empty if there is no shorter form
    };

    /// From this rank on a column is left out before anything else changes.
    static constexpr unsigned goodToHave = 10;

    /// From this rank on a column is left out before any column is shortened.
    static constexpr unsigned decoration = 9;

    explicit Table(std::vector<Column> columns);

    /// @p cells may be fewer than the columns; missing ones are blank.
    void add(std::vector<Cell> cells);

    /// The rows without blanks at their ends. @param width 0 for no limit
    std::vector<std::string> lines(unsigned width, bool hasColours) const;

    /// The names of the columns that lines() leaves out at @p width.
    std::vector<std::string> leftOut(unsigned width) const;

private:
    /// How the table is shown at some width.
    struct Layout
    {
        std::vector<std::size_t> widths; ///< 0 for a column that is left out or empty
        bool isCompact = false;
        bool hasNarrowGaps = false;
    };

    Layout layout(unsigned width) const;
    const std::string& textOf(const Cell& cell, const Layout& layout) const;
    std::size_t gapBefore(std::size_t column, const Layout& layout) const;
    std::vector<std::size_t> naturalWidths(const Layout& layout) const;
    std::size_t totalWidth(const Layout& layout) const;
    bool leaveOut(Layout& layout, unsigned lowestRank) const;
    void shorten(Layout& layout, std::size_t width, unsigned Column::*limit) const;
    void widen(Layout& layout, std::size_t width, const Layout& unshortened) const;

    std::vector<Column> m_columns;
    std::vector<std::vector<Cell>> m_rows;
};

/// "Left out at 40 columns: jack and flow", in lines of that width; nothing if @p names is empty.
std::vector<std::string> leftOutNote(const std::vector<std::string>& names, unsigned width);
}
