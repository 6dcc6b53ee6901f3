/// The keys of each kind of object in a machine file. The reader refuses any other; machines/machine.schema.json says
/// the same, and a test holds the two together.
#pragma once

#include "simulator/machine/script.h"

#include <string_view>
#include <vector>

namespace sim
{
struct FileKey
{
    std::string_view name;
    bool required = false;
};

struct FileObject
{
    std::string_view name; ///< as in the schema's definitions
    std::vector<FileKey> keys;
};

/// All kinds of objects.
const std::vector<FileObject>& fileObjects();

/// The kind of that name, which must be one of them.
const FileObject& fileObject(std::string_view name);

/// The name of the kind of object that describes such an event.
std::string_view eventObject(ScriptEvent::Kind kind);
}
