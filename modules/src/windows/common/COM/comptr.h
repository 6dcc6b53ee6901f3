#pragma once

#include "libModuleCommon/export.h"
#include "platform/coreaudio.h"
#include "qor/export.h"
#include "qor/logging.h" // for callers, which set the priority and the sink of the log
#include "qor/resource.h"

/// Logs (LOG_ERROR, channel "comptr") that an exception has come out of Release; the guard of ComPtrStorage calls it.
SONAVIT_API QOR_COLD void logExceptionOfRelease();

/// Storage policy of a handle that holds one counted reference to a COM object.
template<class I>
struct ComPtrStorage
{
    using Element = I;

    static constexpr bool copyable = true;
    static constexpr I* nil() noexcept { return nullptr; }

    static I* copy(I* source)
    {
        if (source != nullptr)
            source->AddRef();
        return source;
    }

    /// Releases the reference and sets @p value to null. An exception out of Release is logged (LOG_ERROR) and passes
    /// on to the caller, with @p value as it was: the guard adds the record and changes nothing else.
    static void release(I*& value) noexcept(false)
    {
        try
        {
            if (value != nullptr)
            {
                value->Release();
                value = nullptr;
            }
        }
        catch (...)
        {
            logExceptionOfRelease();
            throw;
        }
    }
};

/// Storage policy of a counted handle that owns memory from CoTaskMemAlloc.
template<class T>
struct ComTaskMemStorage
{
    using Element = T;

    static constexpr T* nil() noexcept { return nullptr; }

    static void release(T*& value) noexcept
    {
        if (value != nullptr)
            CoTaskMemFree(value);
        value = nullptr;
    }
};

/// COMPtr<I>::pointer holds one counted reference to an I.
///
/// Construction from a raw pointer adopts the caller's reference: there is no AddRef. That is the form for the
/// out-parameter of a platform function; a caller that keeps its own reference copies a handle instead.
template<class I>
struct COMPtr
{
    typedef qor::CopiedResource<ComPtrStorage<I>> pointer;
};

/// Keeps COM initialized, as a single-threaded apartment, from construction to destruction.
///
/// The destructor calls CoUninitialize even if CoInitialize failed; the result of CoInitialize is logged (LOG_DEBUG)
/// and otherwise ignored. CoInitialize runs on the constructing thread, CoUninitialize on the destroying thread.
class SONAVIT_API COMInitializer
{
public:
    /// An exception out of logging the result passes on, after CoUninitialize if CoInitialize had succeeded.
    COMInitializer();

    /// A copy does not initialize COM; its destructor uninitializes it nevertheless.
    COMInitializer(const COMInitializer&) = default;
    COMInitializer& operator=(const COMInitializer&) = default;

    ~COMInitializer();
};

/// The number of references on @p object, as far as the object reports it: the result of AddRef, which a Release
/// follows, minus 1. @p object must not be null.
SONAVIT_API unsigned int comReferenceCount(IUnknown* object);
