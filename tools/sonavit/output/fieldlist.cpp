#include "tools/sonavit/output/fieldlist.h"

#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <cstddef>

namespace sonavit::program
{
namespace
{
constexpr std::size_t indentation = 2;
constexpr std::size_t gap = 2;
constexpr std::size_t narrowestValue = 20; ///< columns; in a terminal without room for them the values are not wrapped
}

void showFields(const Environment& environment, const Fields& fields)
{
    std::size_t widestName = 0;
    for (const auto& [name, value] : fields)
        widestName = std::max(widestName, displayWidth(name));
    const std::size_t start = indentation + widestName + gap;
    const std::size_t room = environment.width < start + narrowestValue ? 0 : environment.width - start;
    for (const auto& [name, value] : fields)
    {
        std::string before = std::string(indentation, ' ') + painted(name, Paint::dim, environment.hasColours) +
                             std::string(start - indentation - displayWidth(name), ' ');
        for (const std::string& line : wrapped(value, room))
        {
            environment.out << before << line << "\n";
            before = std::string(start, ' ');
        }
    }
}
}
