#include "tools/sonavit/output/table.h"

#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <utility>

namespace sonavit::program
{
namespace
{
const char* sequence(Paint paint)
{
    switch (paint)
    {
    case Paint::bold:
        return "\x1B[1m";
    case Paint::dim:
        return "\x1B[2m";
    case Paint::green:
        return "\x1B[32m";
    case Paint::red:
        return "\x1B[31m";
    case Paint::yellow:
        return "\x1B[33m";
    case Paint::cyan:
        return "\x1B[36m";
    case Paint::none:
        break;
    }
    return "";
}
}

std::string painted(const std::string& text, Paint paint, bool hasColours)
{
    const bool isPlain = !hasColours || paint == Paint::none || text.find_first_not_of(' ') == std::string::npos;
    return isPlain ? text : sequence(paint) + text + "\x1B[0m";
}

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

void Table::add(std::vector<Cell> cells)
{
    cells.resize(m_columns.size());
    m_rows.push_back(std::move(cells));
}

std::vector<std::string> Table::lines(unsigned width, bool hasColours) const
{
    const Layout layout = this->layout(width);
    const std::vector<std::size_t>& widths = layout.widths;
    std::vector<std::string> result;
    for (const std::vector<Cell>& row : m_rows)
    {
        std::string line;
        std::size_t blanks = 0; // kept back, as nothing may follow them
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            if (widths[i] == 0)
                continue;
            const std::string text = shortened(textOf(row[i], layout), widths[i]);
            const std::size_t rest = widths[i] - displayWidth(text);
            const bool isRight = m_columns[i].align == Column::Align::right;
            blanks += line.empty() && blanks == 0 ? 0 : gapBefore(i, layout);
            blanks += isRight ? rest : 0;
            if (!text.empty())
            {
                line += std::string(blanks, ' ') + painted(text, row[i].paint, hasColours);
                blanks = 0;
            }
            blanks += isRight ? 0 : rest;
        }
        result.push_back(std::move(line));
    }
    return result;
}

std::vector<std::string> Table::leftOut(unsigned width) const
{
    if (width == 0)
        return {};
    const Layout whole = layout(0);
    const Layout fitting = layout(width);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < m_columns.size(); ++i)
    {
        if (whole.widths[i] > 0 && fitting.widths[i] == 0 && m_columns[i].name[0] != '\0')
            names.emplace_back(m_columns[i].name);
    }
    return names;
}

Table::Layout Table::layout(unsigned width) const
{
    Layout layout;
    layout.widths = naturalWidths(layout);
    const auto isTooWide = [&] { return width > 0 && totalWidth(layout) > width; };
    while (isTooWide() && leaveOut(layout, goodToHave))
    {
    }
    if (isTooWide())
    {
        layout.isCompact = true;
        const std::vector<std::size_t> compact = naturalWidths(layout);
        for (std::size_t i = 0; i < compact.size(); ++i)
            layout.widths[i] = std::min(layout.widths[i], compact[i]);
    }
    layout.hasNarrowGaps = isTooWide();
    while (isTooWide() && leaveOut(layout, decoration))
    {
    }
    const Layout unshortened = layout;
    if (isTooWide())
        shorten(layout, width, &Column::smallest);
    while (isTooWide() && leaveOut(layout, 1))
    {
    }
    if (isTooWide())
        shorten(layout, width, &Column::least);
    widen(layout, width, unshortened);
    return layout;
}

const std::string& Table::textOf(const Cell& cell, const Layout& layout) const
{
    return layout.isCompact && !cell.compact.empty() ? cell.compact : cell.text;
}

std::size_t Table::gapBefore(std::size_t column, const Layout& layout) const
{
    return layout.hasNarrowGaps ? std::min(m_columns[column].gap, 1u) : m_columns[column].gap;
}

std::vector<std::size_t> Table::naturalWidths(const Layout& layout) const
{
    std::vector<std::size_t> widths(m_columns.size(), 0);
    for (const std::vector<Cell>& row : m_rows)
    {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(textOf(row[i], layout)));
    }
    return widths;
}

std::size_t Table::totalWidth(const Layout& layout) const
{
    std::size_t total = 0;
    for (std::size_t i = 0; i < layout.widths.size(); ++i)
    {
        if (layout.widths[i] > 0)
            total += layout.widths[i] + (total == 0 ? 0 : gapBefore(i, layout));
    }
    return total;
}

/// Leaves out the column of the highest rank. @return whether there was one
bool Table::leaveOut(Layout& layout, unsigned lowestRank) const
{
    std::size_t candidate = m_columns.size();
    for (std::size_t i = 0; i < m_columns.size(); ++i)
    {
        const bool isBetter = candidate == m_columns.size() || m_columns[i].leaveOut > m_columns[candidate].leaveOut;
        if (layout.widths[i] > 0 && m_columns[i].leaveOut >= lowestRank && isBetter)
            candidate = i;
    }
    if (candidate == m_columns.size())
        return false;
    layout.widths[candidate] = 0;
    return true;
}

/// Shortens columns to what is missing, but none below its @p limit.
void Table::shorten(Layout& layout, std::size_t width, unsigned Column::*limit) const
{
    std::size_t excess = totalWidth(layout) - width;
    for (std::size_t i = 0; i < m_columns.size(); ++i)
    {
        const std::size_t smallest = m_columns[i].*limit;
        if (smallest == 0 || layout.widths[i] <= smallest)
            continue;
        const std::size_t taken = std::min(excess, layout.widths[i] - smallest);
        layout.widths[i] -= taken;
        excess -= taken;
    }
}

/// Gives shortened columns the room that columns left out afterwards have made.
void Table::widen(Layout& layout, std::size_t width, const Layout& unshortened) const
{
    for (std::size_t i = 0; i < m_columns.size(); ++i)
    {
        const std::size_t total = totalWidth(layout);
        if (layout.widths[i] > 0 && total < width)
            layout.widths[i] += std::min(width - total, unshortened.widths[i] - layout.widths[i]);
    }
}

std::vector<std::string> leftOutNote(const std::vector<std::string>& names, unsigned width)
{
    if (names.empty())
        return {};
    return wrapped("Left out at " + counted(width, "column") + ": " + enumeration(names), width);
}
}
