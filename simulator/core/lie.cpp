#include "simulator/lie.h"

#include "simulator/core/liar.h"
#include "simulator/core/simulatedobject.h"

#include <algorithm>
#include <utility>

namespace sim
{
Lie Lie::ofNumber(std::uint64_t number)
{
    Lie lie;
    lie.m_number = number;
    return lie;
}

Lie Lie::ofText(std::optional<std::u16string> text)
{
    Lie lie;
    lie.m_text.emplace(std::move(text));
    return lie;
}

Lie Lie::ofBlobWithoutData(std::uint32_t bytes)
{
    Lie lie;
    lie.m_bytesOfNothing = bytes;
    return lie;
}

void Liar::tellText(LPWSTR& text) const
{
    if (!m_lie.m_text)
        return;
    if (text != nullptr)
        TaskMemory::instance().free(text);
    text = nullptr;
    if (!*m_lie.m_text)
        return;
    const std::u16string& units = **m_lie.m_text;
    void* const memory =
        TaskMemory::instance().allocate((units.size() + 1) * sizeof(WCHAR), m_state.number, {m_operation, m_object});
    text = static_cast<LPWSTR>(memory);
    if (text != nullptr)
        std::copy_n(units.c_str(), units.size() + 1, text);
}

void Liar::tellVariant(PROPVARIANT& value) const
{
    if (m_lie.m_number && value.vt == VT_UI4)
        value.ulVal = static_cast<ULONG>(*m_lie.m_number);
    if (value.vt == VT_LPWSTR)
        tellText(value.pwszVal);
    if (m_lie.m_bytesOfNothing && value.vt == VT_BLOB)
    {
        if (value.blob.pBlobData != nullptr)
            TaskMemory::instance().free(value.blob.pBlobData);
        value.blob.pBlobData = nullptr;
        value.blob.cbSize = static_cast<ULONG>(*m_lie.m_bytesOfNothing);
    }
}

/// Every interface begins with IUnknown.
void* Liar::objectFor(void* truth) const
{
    if (m_lie.m_object.pointer == nullptr)
        return truth;
    if (SimulatedObject* const object = simulatedObject(static_cast<IUnknown*>(truth)))
        object->takeBack();
    else if (truth != nullptr)
        static_cast<IUnknown*>(truth)->Release(); // the object of an earlier lie
    m_lie.m_object.unknown->AddRef();
    return m_lie.m_object.pointer;
}
}
