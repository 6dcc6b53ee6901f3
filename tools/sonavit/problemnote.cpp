#include "tools/sonavit/problemnote.h"

#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

namespace sonavit::program
{
void showProblems(const Context& context, std::size_t count, const std::string& where)
{
    if (count == 0)
        return;
    const std::string text = counted(count, "thing") + " could not be read; " + where;
    for (const std::string& line : wrapped(text, context.environment.width))
        context.environment.out << painted(line, Paint::yellow, context.environment.hasColours) << "\n";
}
}
