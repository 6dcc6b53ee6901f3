#include "simulator/census.h"

#include <numeric>
#include <ostream>

namespace sim
{
namespace
{
using Counts = std::map<std::string, long>;

long sum(const Counts& counts)
{
    const auto add = [](long total, const Counts::value_type& count) { return total + count.second; };
    return std::accumulate(counts.begin(), counts.end(), 0L, add);
}

Counts difference(const Counts& now, const Counts& before)
{
    Counts result = now;
    for (const auto& [name, count] : before)
    {
        result[name] -= count;
        if (result[name] == 0)
            result.erase(name);
    }
    return result;
}

void describe(std::string& text, const char* title, const Counts& counts)
{
    for (const auto& [name, count] : counts)
        text.append(title).append(" ").append(name).append(": ").append(std::to_string(count)).append("\n");
}
}

long Census::references() const
{
    return sum(byInterface);
}

long Census::references(const std::string& interfaceName) const
{
    const auto found = byInterface.find(interfaceName);
    return found == byInterface.end() ? 0 : found->second;
}

long Census::taskBlocks() const
{
    return sum(taskMemory);
}

bool Census::empty() const
{
    return byInterface.empty() && byObject.empty() && objects.empty() && taskMemory.empty() && taskBytes == 0 &&
           clients.empty();
}

std::string Census::describe() const
{
    std::string text;
    sim::describe(text, "references on", byObject);
    sim::describe(text, "task memory of", taskMemory);
    sim::describe(text, "registered", clients);
    return text.empty() ? "nothing" : text;
}

Census operator-(const Census& now, const Census& before)
{
    Census result;
    result.byInterface = difference(now.byInterface, before.byInterface);
    result.byObject = difference(now.byObject, before.byObject);
    result.objects = difference(now.objects, before.objects);
    result.taskMemory = difference(now.taskMemory, before.taskMemory);
    result.taskBytes = now.taskBytes - before.taskBytes;
    result.clients = difference(now.clients, before.clients);
    return result;
}

bool operator==(const Census& left, const Census& right)
{
    return (left - right).empty();
}

std::ostream& operator<<(std::ostream& stream, const Census& census)
{
    return stream << census.describe();
}
}
