#pragma once

#include "platform/coreaudio.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace support
{
/// Calls that several counted objects received, in their order: "first AddRef", "second Release".
using CallList = std::vector<std::string>;

/// Counts its references, notes the calls for them, and survives the last one so that both can be read.
class CountedObject final : public IUnknown
{
public:
    CountedObject(CallList& calls, std::string name) : m_calls(calls), m_name(std::move(name)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override
    {
        m_calls.push_back(m_name + " AddRef");
        return ++count;
    }

    ULONG STDMETHODCALLTYPE Release() override
    {
        m_calls.push_back(m_name + " Release");
        --count;
        if (atRelease)
            atRelease();
        return count + releaseSurplus;
    }

    ULONG count = 1;                 ///< begins with the test's own reference
    ULONG releaseSurplus = 0;        ///< by how much Release overstates the count
    std::function<void()> atRelease; ///< runs within Release, when the reference is given up; may throw

private:
    CallList& m_calls;
    const std::string m_name;
};
}
