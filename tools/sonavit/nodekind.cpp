#include "tools/sonavit/nodekind.h"

#include "libModuleCommon/guid.h"
#include "simulator/machine/nodetypes.h"

namespace sonavit::program
{
std::optional<GUID> typeOrNothing(const GUID& type)
{
    if (type == GUID{})
        return std::nullopt;
    return type;
}

std::optional<std::string> kindKey(const std::optional<GUID>& type)
{
    if (!type)
        return std::nullopt;
    const std::string name = sim::nameOf(sim::nodeTypeNames, *type);
    return name.empty() ? "other" : name;
}

std::optional<std::string> typeText(const std::optional<GUID>& type)
{
    if (!type)
        return std::nullopt;
    GUID copy = *type;
    return guidToString(&copy).toUtf8();
}

bool isDigitalJack(const GUID& type)
{
    return type == KSNODETYPE_SPDIF_INTERFACE || type == KSNODETYPE_HDMI_INTERFACE ||
           type == KSNODETYPE_DISPLAYPORT_INTERFACE || type == KSNODETYPE_DIGITAL_AUDIO_INTERFACE ||
           type == KSNODETYPE_1394_DA_STREAM;
}

bool isLineJack(const GUID& type)
{
    return type == KSNODETYPE_LINE_CONNECTOR;
}
}
