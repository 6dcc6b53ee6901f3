#include "simulator/machine/propertykeys.h"

#include "simulator/machine/property.h"
#include "simulator/machine/valuetext.h"

namespace sim
{
std::string keyText(const PROPERTYKEY& key)
{
    for (const NamedKey& named : namedKeys)
    {
        if (sameKey(named.key, key))
            return std::string(named.name);
    }
    return guidText(key.fmtid) + "/" + std::to_string(key.pid);
}

std::optional<PROPERTYKEY> keyFromText(const std::string& text)
{
    for (const NamedKey& named : namedKeys)
    {
        if (named.name == text)
            return named.key;
    }
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos)
        return std::nullopt;
    const std::optional<GUID> format = guidFromText(text.substr(0, slash));
    const std::optional<std::uint32_t> number = numberFromText(text.substr(slash + 1));
    if (!format || !number)
        return std::nullopt;
    return PROPERTYKEY{*format, *number};
}
}
