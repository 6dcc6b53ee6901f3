#include "simulator/machine/propertykeys.h"

#include "simulator/machine/valuetext.h"

namespace sim
{
std::string keyText(const PROPERTYKEY& key)
{
    const std::string name = nameOf(keyNames, key);
    return name.empty() ? guidText(key.fmtid) + "/" + std::to_string(key.pid) : name;
}

std::optional<PROPERTYKEY> keyFromText(const std::string& text)
{
    if (const std::optional<PROPERTYKEY> named = valueOf(keyNames, text))
        return named;
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
