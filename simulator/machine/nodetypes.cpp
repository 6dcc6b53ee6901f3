#include "simulator/machine/nodetypes.h"

#include "simulator/machine/valuetext.h"

namespace sim
{
std::string nodeTypeText(const GUID& nodeType)
{
    for (const NamedNodeType& named : namedNodeTypes)
    {
        if (named.type == nodeType)
            return std::string(named.name);
    }
    return guidText(nodeType);
}

std::optional<GUID> nodeTypeFromText(const std::string& text)
{
    for (const NamedNodeType& named : namedNodeTypes)
    {
        if (named.name == text)
            return named.type;
    }
    return guidFromText(text);
}
}
