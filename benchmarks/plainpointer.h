#pragma once

namespace bench
{
/// Owns a reference on a COM object, as the pointer classes of Windows' own libraries do, and nothing else: no log, no
/// guard around Release.
template<class Interface>
class PlainPointer
{
public:
    /// Adopts @p object.
    explicit PlainPointer(Interface* object) noexcept : m_object(object) {}

    PlainPointer(const PlainPointer& other) noexcept : m_object(other.m_object)
    {
        if (m_object != nullptr)
            m_object->AddRef();
    }

    PlainPointer(PlainPointer&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }

    ~PlainPointer()
    {
        if (m_object != nullptr)
            m_object->Release();
    }

    PlainPointer& operator=(const PlainPointer& other) noexcept
    {
        PlainPointer(other).swap(*this);
        return *this;
    }

    PlainPointer& operator=(PlainPointer&& other) noexcept
    {
        PlainPointer(static_cast<PlainPointer&&>(other)).swap(*this);
        return *this;
    }

    Interface* get() const noexcept { return m_object; }

private:
    void swap(PlainPointer& other) noexcept
    {
        Interface* const object = m_object;
        m_object = other.m_object;
        other.m_object = object;
    }

    Interface* m_object;
};
}
