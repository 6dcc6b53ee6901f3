#pragma once

#include "platform/coreaudio.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace support
{
/// Calls that several counted objects received, in order: "first AddRef", "second Release".
using CallList = std::vector<std::string>;

/// Counts its references and records the calls. The last Release does not destroy it, so a test can read both.
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

    ULONG count = 1;                 ///< 1 at first, for the test's own reference
    ULONG releaseSurplus = 0;        ///< how much Release adds to the count that it returns
    std::function<void()> atRelease; ///< runs inside Release after the count has changed; may throw

private:
    CallList& m_calls;
    const std::string m_name;
};
}
