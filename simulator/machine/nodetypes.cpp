#include "simulator/machine/nodetypes.h"

#include "simulator/machine/valuetext.h"

namespace sim
{
std::string nodeTypeText(const GUID& nodeType)
{
    const std::string name = nameOf(nodeTypeNames, nodeType);
    return name.empty() ? guidText(nodeType) : name;
}

std::optional<GUID> nodeTypeFromText(const std::string& text)
{
    const std::optional<GUID> named = valueOf(nodeTypeNames, text);
    return named ? named : guidFromText(text);
}
}
