// The survey's signal paths.
#include "client/capturing/hardwaresurvey.h"

#include "client/capturing/taken.h"

#include <algorithm>

namespace sonavit::capturing
{
namespace
{
using reading::Handle;

/// A device with more connectors has no signal paths beyond them: each pair costs a call.
constexpr std::size_t mostConnectors = 256;

bool isAlike(std::size_t one, std::size_t other)
{
    return one == other || one == none || other == none;
}
}

/// Asks for the paths between the connectors of a device that are new. @return whether there were any
bool HardwareSurvey::askPaths(std::size_t device)
{
    FoundDevice& found = m_devices[device];
    std::vector<std::size_t> connectors;
    for (const std::size_t part : found.met)
    {
        if (m_parts[part].device == device && m_parts[part].connector.get() != nullptr)
            connectors.push_back(part);
    }
    if (found.topology.get() == nullptr)
        return false;
    if (connectors.size() > mostConnectors)
    {
        m_recorder.note(found.id + " has more connectors than the capture asks for signal paths.");
        connectors.resize(mostConnectors);
    }
    bool isNew = false;
    for (const std::size_t from : connectors)
    {
        for (const std::size_t to : connectors)
        {
            if (found.paths.count({from, to}) != 0)
                continue;
            isNew = true;
            FoundPath path = askPath(device, from, to);
            found.paths.emplace(std::pair(from, to), std::move(path));
        }
    }
    return isNew;
}

/// A path is mixed if it is not found when mixed paths are rejected. What cannot be read in one of two equal lists
/// counts as unreadable in both.
FoundPath HardwareSurvey::askPath(std::size_t device, std::size_t from, std::size_t to)
{
    FoundPath path;
    std::vector<std::size_t> items;
    if (findPath(device, from, to, FALSE, path, items) != PathAnswer::found)
        return path;
    path.isThere = true;
    std::vector<std::size_t> unmixed;
    const PathAnswer answer = findPath(device, from, to, TRUE, path, unmixed);
    path.isMixed = answer == PathAnswer::missing;
    if (answer == PathAnswer::found)
    {
        const bool isSame = std::equal(items.begin(), items.end(), unmixed.begin(), unmixed.end(), isAlike);
        if (isSame)
            std::transform(items.begin(), items.end(), unmixed.begin(), items.begin(),
                           [](std::size_t one, std::size_t other) { return other == none ? none : one; });
        else
            path.unmixed = partsBetween(unmixed, from, to);
        path.isMixed = !isSame;
    }
    path.through = partsBetween(items, from, to);
    return path;
}

HardwareSurvey::PathAnswer HardwareSurvey::findPath(std::size_t device, std::size_t from, std::size_t to,
                                                    BOOL rejectMixed, FoundPath& path, std::vector<std::size_t>& items)
{
    IPartsList* object = nullptr;
    const HRESULT result = m_devices[device].topology->GetSignalPath(m_parts[from].part.get(), m_parts[to].part.get(),
                                                                     rejectMixed, &object);
    const Handle<IPartsList> list = taken(result, object);
    const Question question = {"IDeviceTopology::GetSignalPath", {argument(rejectMixed)}};
    if (!path.calls.gives(result, object, question, {E_NOTFOUND}))
        return result == E_NOTFOUND ? PathAnswer::missing : PathAnswer::failing;
    readList(*list, path.list, "", device, items);
    return PathAnswer::found;
}

/// The platform's list contains both ends and runs against the signal.
std::vector<std::size_t> HardwareSurvey::partsBetween(const std::vector<std::size_t>& items, std::size_t from,
                                                      std::size_t to)
{
    if (items.size() >= 2 && isAlike(items.front(), to) && isAlike(items.back(), from))
        return {items.rbegin() + 1, items.rend() - 1};
    m_recorder.note("The list of a signal path does not lead from its end to its beginning, as those of a machine do.");
    if (items.size() >= 2 && isAlike(items.front(), from) && isAlike(items.back(), to))
        return {items.begin() + 1, items.end() - 1};
    std::vector<std::size_t> through(items.rbegin(), items.rend());
    const auto isEnd = [&](std::size_t part) { return part == none || part == from || part == to; };
    through.erase(std::remove_if(through.begin(), through.end(), isEnd), through.end());
    return through;
}
}
