/// @file
/// The functions that a module imports.
#pragma once

#include <functional>

namespace sim
{
/// Calls @p action with the name of each function that @p module imports by name, and with the place that holds its
/// address. Both import tables are read: that of libraries which are loaded with the module, and that of libraries
/// which are loaded at the first call. Names are searched in all libraries: different linkers find the functions of the
/// system in different ones ("ole32.dll", "combase.dll", "api-ms-win-core-com-l1-1-0.dll").
void visitImports(void* module, const std::function<void(const char* name, void** place)>& action);

/// Stores an address in a place of an import table, even if its page is write-protected. The store is atomic: other
/// threads that call the function meet the old address or the new one.
/// @return false if the system refuses; then the old address remains
bool storeImport(void** place, void* address);
}
