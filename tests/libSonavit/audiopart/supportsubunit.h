/// A subunit whose part is another object, or is handed out along with a failure code.
#pragma once

#include "tests/libSonavit/supportstackobject.h"

namespace support
{
class SubunitOfPart final : public StackObject<ISubunit>
{
public:
    /// Borrows @p part; hands out a reference on it only if the call succeeds.
    SubunitOfPart(IPart* part, HRESULT result) : m_part(part), m_result(result) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = m_part;
        if (SUCCEEDED(m_result))
            m_part->AddRef();
        return m_result;
    }

private:
    IPart* const m_part;
    const HRESULT m_result;
};
}
