/// Loading a module while a program runs.
#pragma once

#if defined(_WIN32)
#include <windows.h>
#define UNLOADING_EXPORT extern "C" __declspec(dllexport)
#else
#include <dlfcn.h>
#define UNLOADING_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace unloading
{
/// A module that stays loaded to the end of the process, unless it is unloaded before.
class Module
{
public:
    explicit Module(const char* file) : m_handle(load(file)) {}

    bool isLoaded() const { return m_handle != nullptr; }

    /// Whether the process has a module of that file, by any loader.
    static bool isLoaded(const char* file)
    {
#if defined(_WIN32)
        return GetModuleHandleA(file) != nullptr;
#else
        void* const found = ::dlopen(file, RTLD_NOW | RTLD_NOLOAD);
        return found != nullptr && ::dlclose(found) == 0;
#endif
    }

    /// Gives it back; its functions must not be called any more.
    void unload()
    {
#if defined(_WIN32)
        FreeLibrary(m_handle);
#else
        ::dlclose(m_handle);
#endif
    }

    /// The module's function @p name, which the caller knows to have the type Function.
    template<class Function>
    Function* function(const char* name) const
    {
#if defined(_WIN32)
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_handle, name)));
#else
        return reinterpret_cast<Function*>(::dlsym(m_handle, name));
#endif
    }

private:
#if defined(_WIN32)
    using Handle = HMODULE;
    static Handle load(const char* file)
    {
        return LoadLibraryA(file);
    }
#else
    using Handle = void*;
    static Handle load(const char* file)
    {
        return ::dlopen(file, RTLD_NOW | RTLD_GLOBAL);
    }
#endif

    Handle m_handle;
};
}
