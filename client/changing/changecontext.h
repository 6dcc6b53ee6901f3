#pragma once

#include "platform/coreaudio.h"

namespace sonavit::changing
{
/// The event context of one change, which the events carry that follow from it.
class ChangeContext
{
public:
    explicit ChangeContext(const GUID& id) noexcept : m_id(id) {}

    /// For a setter of the platform.
    LPCGUID use() noexcept
    {
        m_isUsed = true;
        return &m_id;
    }
    /// Whether a setter was called: a change to what is there already calls none.
    bool isUsed() const noexcept { return m_isUsed; }

    /// What is read after the setters is what was read before them, as if the device has rounded a level to the step
    /// that it was at.
    void noteNoEffect() noexcept { m_hasEffect = false; }
    /// Whether a setter was called and something is different after it.
    bool hasChanged() const noexcept { return m_isUsed && m_hasEffect; }

private:
    GUID m_id;
    bool m_isUsed = false;
    bool m_hasEffect = true;
};
}
