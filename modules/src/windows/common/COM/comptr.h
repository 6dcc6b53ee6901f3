#pragma once

#include "libModuleCommon/export.h"
#include "platform/coreaudio.h"
#include "qor/logstatement.h"
#include "qor/resource.h"

/// Log channel of the handles' guard and of COMInitializer.
namespace comptrlog
{
inline constexpr const char* channel = "comptr";
inline qor::LoggerSlot logger;
}

/// Storage of a handle that holds one counted reference to a COM object.
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

    /// Releases the reference. What Release throws is reported (LOG_ERROR) and goes on to the caller: the guard adds
    /// the record and changes nothing else.
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
            SONAVIT_LOG(comptrlog, LOG_ERROR, out.append("COMPtr destructor caught an exception"));
            throw;
        }
    }
};

/// Storage of memory from CoTaskMemAlloc, for a counted handle.
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

/// COMPtr<I>::pointer holds one counted reference to an I. Built from a raw pointer it adopts the caller's reference,
/// which is what the out-parameter of a platform function gives; a caller that keeps its own reference copies a handle
/// instead.
template<class I>
struct COMPtr
{
    typedef qor::CopiedResource<ComPtrStorage<I>> pointer;
};

/// Keeps COM initialised, as a single-threaded apartment, from construction to destruction.
///
/// CoUninitialize is called whatever CoInitialize answered; the result is logged (LOG_DEBUG) and not acted on. The
/// apartment is that of the constructing thread; the balancing call is made on the destroying one.
class SONAVIT_API COMInitializer
{
public:
    COMInitializer();

    /// A copy does not initialise COM, and uninitialises it at its end all the same.
    COMInitializer(const COMInitializer&) = default;
    COMInitializer& operator=(const COMInitializer&) = default;

    ~COMInitializer();
};

/// The number of references on @p object, as far as its platform tells: the answer of an AddRef less one, which a
/// Release takes back. @p object is not null.
SONAVIT_API unsigned int comReferenceCount(IUnknown* object);
