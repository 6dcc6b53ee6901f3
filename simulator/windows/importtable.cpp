#include "simulator/windows/importtable.h"

#include "platform/coreaudio.h"

#include <delayimp.h>

#include <cstddef>

namespace sim
{
namespace
{
using Action = std::function<void(const char*, void**)>;

/// The object @p offset bytes into a module.
template<class T>
T* at(void* module, std::size_t offset)
{
    return reinterpret_cast<T*>(static_cast<unsigned char*>(module) + offset);
}

/// A table of the module; null if the module has none of that kind.
template<class T>
const T* directory(void* module, unsigned kind)
{
    const auto* const headers =
        at<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
    if (kind >= headers->OptionalHeader.NumberOfRvaAndSizes)
        return nullptr;
    const DWORD offset = headers->OptionalHeader.DataDirectory[kind].VirtualAddress;
    return offset == 0 ? nullptr : at<T>(module, offset);
}

/// The functions of one imported library: parallel lists of names and addresses, which end with a zero.
void visitLibrary(void* module, std::size_t names, std::size_t addresses, const Action& action)
{
    const auto* name = at<IMAGE_THUNK_DATA>(module, names);
    auto* slot = at<IMAGE_THUNK_DATA>(module, addresses);
    for (; name->u1.AddressOfData != 0; ++name, ++slot)
    {
        if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
            continue;
        const auto* const byName = at<IMAGE_IMPORT_BY_NAME>(module, static_cast<std::size_t>(name->u1.AddressOfData));
        action(reinterpret_cast<const char*>(byName->Name), reinterpret_cast<void**>(&slot->u1.Function));
    }
}

void visitLoaded(void* module, const Action& action)
{
    const auto* library = directory<IMAGE_IMPORT_DESCRIPTOR>(module, IMAGE_DIRECTORY_ENTRY_IMPORT);
    for (; library != nullptr && library->Name != 0; ++library)
    {
        if (library->OriginalFirstThunk != 0) // else it has no names
            visitLibrary(module, library->OriginalFirstThunk, library->FirstThunk, action);
    }
}

/// Before the first call the place holds the address of code that loads the library; a replacement keeps it from being
/// loaded. Tables of old linkers, which hold addresses instead of offsets, are left out.
void visitLoadedOnDemand(void* module, const Action& action)
{
    const auto* library = directory<ImgDelayDescr>(module, IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT);
    for (; library != nullptr && library->rvaDLLName != 0; ++library)
    {
        if ((library->grAttrs & dlattrRva) != 0)
            visitLibrary(module, library->rvaINT, library->rvaIAT, action);
    }
}
}

void visitImports(void* module, const Action& action)
{
    visitLoaded(module, action);
    visitLoadedOnDemand(module, action);
}

bool storeImport(void** place, void* address)
{
    DWORD protection = 0;
    if (!VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection))
        return false;
    InterlockedExchangePointer(place, address);
    VirtualProtect(place, sizeof *place, protection, &protection);
    return true;
}
}
