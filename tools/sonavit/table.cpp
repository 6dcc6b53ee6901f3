#include "tools/sonavit/table.h"

#include "tools/sonavit/text.h"

#include <algorithm>
#include <utility>

namespace sonavit
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
    std::vector<std::size_t> widths = naturalWidths();
    if (width > 0)
        fit(widths, width);
    std::vector<std::string> result;
    for (const std::vector<Cell>& row : m_rows)
    {
        std::string line;
        std::size_t blanks = 0; // held back, as there may be nothing behind them
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            if (widths[i] == 0)
                continue;
            const std::string text = shortened(row[i].text, widths[i]);
            const std::size_t rest = widths[i] - displayWidth(text);
            const bool isRight = m_columns[i].align == Column::Align::right;
            blanks += line.empty() && blanks == 0 ? 0 : m_columns[i].gap;
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

std::vector<std::size_t> Table::naturalWidths() const
{
    std::vector<std::size_t> widths(m_columns.size(), 0);
    for (const std::vector<Cell>& row : m_rows)
    {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(row[i].text));
    }
    return widths;
}

std::size_t Table::totalWidth(const std::vector<std::size_t>& widths) const
{
    std::size_t total = 0;
    for (std::size_t i = 0; i < widths.size(); ++i)
    {
        if (widths[i] > 0)
            total += widths[i] + (total == 0 ? 0 : m_columns[i].gap);
    }
    return total;
}

void Table::fit(std::vector<std::size_t>& widths, std::size_t width) const
{
    while (totalWidth(widths) > width && leaveOut(widths, goodToHave))
    {
    }
    if (totalWidth(widths) > width)
        shorten(widths, totalWidth(widths) - width);
    while (totalWidth(widths) > width && leaveOut(widths, 1))
    {
    }
}

/// Leaves out the column of the highest rank. @return whether there was one
bool Table::leaveOut(std::vector<std::size_t>& widths, unsigned lowestRank) const
{
    std::size_t candidate = widths.size();
    for (std::size_t i = 0; i < widths.size(); ++i)
    {
        const bool isBetter = candidate == widths.size() || m_columns[i].leaveOut > m_columns[candidate].leaveOut;
        if (widths[i] > 0 && m_columns[i].leaveOut >= lowestRank && isBetter)
            candidate = i;
    }
    if (candidate == widths.size())
        return false;
    widths[candidate] = 0;
    return true;
}

void Table::shorten(std::vector<std::size_t>& widths, std::size_t excess) const
{
    for (std::size_t i = 0; i < widths.size(); ++i)
    {
        const std::size_t smallest = m_columns[i].smallest;
        if (smallest == 0 || widths[i] <= smallest)
            continue;
        const std::size_t taken = std::min(excess, widths[i] - smallest);
        widths[i] -= taken;
        excess -= taken;
    }
}
}
