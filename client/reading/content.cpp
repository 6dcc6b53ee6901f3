#include "client/reading/content.h"

namespace sonavit::reading
{
/// What changes most comes first.
bool isSame(const Endpoint::Content& left, const Endpoint::Content& right)
{
    return left.volume == right.volume && left.state == right.state && left.roles == right.roles &&
           left.waveId == right.waveId && left.incarnation == right.incarnation && left.flow == right.flow &&
           left.speakers == right.speakers && left.format == right.format &&
           left.directSoundId == right.directSoundId && left.container == right.container &&
           left.jacks == right.jacks && left.id == right.id && left.description == right.description &&
           left.interfaceName == right.interfaceName && left.driverNode == right.driverNode &&
           left.instancePath == right.instancePath && left.problems == right.problems;
}

bool isSameDescription(const Card::Content& left, const Card::Content& right)
{
    return left.id == right.id && left.instancePath == right.instancePath && left.instanceId == right.instanceId &&
           left.parent == right.parent && left.container == right.container && left.bus == right.bus &&
           left.title == right.title && left.problems == right.problems;
}
}
