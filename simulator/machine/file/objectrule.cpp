#include "simulator/machine/file/objectrule.h"

namespace sim
{
namespace
{
/// Whether a schema mentions @p value as a default.
bool isMentioned(const JsonValue& value)
{
    using Kind = JsonValue::Kind;
    const bool isFilled = value.kind == Kind::string && !value.text.empty();
    return isFilled || value.kind == Kind::boolean || value.kind == Kind::number;
}
}

JsonValue annotated(const JsonValue& schema, const std::string& description, const JsonValue& usual)
{
    JsonValue result = JsonValue::object();
    if (!description.empty())
        result.add("description", JsonValue::ofString(description));
    for (std::size_t index = 0; index < schema.keys.size(); ++index)
        result.add(schema.keys[index], schema.elements[index]);
    if (isMentioned(usual))
        result.add("default", usual);
    return result;
}
}
