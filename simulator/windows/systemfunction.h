/// @file
/// Functions of the system, past the import table of this module.
#pragma once

#include <windows.h>

namespace sim
{
/// The function @p name of a library of the system; null if the library has none. A direct call uses the imports of
/// this module, which may be redirected to the machine themselves.
template<class Function>
Function* systemFunction(const wchar_t* library, const char* name)
{
    HMODULE module = GetModuleHandleW(library);
    if (module == nullptr)
        module = LoadLibraryW(library); // remains loaded to the end of the process
    return module == nullptr ? nullptr
                             : reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}
}
