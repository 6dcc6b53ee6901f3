/// Components that are read in passing; included by the library's source files only.
#pragma once

#include "COM/comptr.h"
#include "libSonavit/audiopart/log.h"
#include "libSonavit/audiopart/partsnapshot.h"
#include "platform/coreaudio.h"

namespace libSonavit
{
/// A connector or a subunit that an operation reads to learn one thing of it: its kind of jack, its id, or only where
/// it is.
///
/// It makes the calls of an AudioComponent in the same order, leaves the same records, and owns the same references for
/// the same time. It has no lists of neighbours: to make those of an AudioPart takes longer than all the rest.
/// @tparam Texts KeptTexts, KeptId or DroppedTexts
template<class I, class Texts>
class PassingComponent
{
public:
    /// Adopts the reference on @p component, which may be null, and adds one on its IPart.
    explicit PassingComponent(I* component)
        : m_component(component),
          m_part(component == nullptr ? nullptr : partsnapshot::partOf(*component)),
          m_subType()
    {
        if (component != nullptr)
            partsnapshot::read(m_part, m_subType, m_texts);
        SONAVIT_TRACE(partlog, "AudioComponent::AudioComponent");
    }

    /// Says that the gate of trace scopes is known to be closed: asking it twice for each component of a large machine
    /// takes longer than anything else that is not done then.
    struct Untraced
    {
        I* component;
    };

    explicit PassingComponent(Untraced untraced)
        : m_component(untraced.component),
          m_part(untraced.component == nullptr ? nullptr : partsnapshot::partOf(*untraced.component)),
          m_subType()
    {
        partsnapshot::readUntraced(m_part, m_subType, m_texts);
    }

    const typename COMPtr<I>::pointer& component() const noexcept { return m_component; }
    const COMPtr<IPart>::pointer& part() const noexcept { return m_part; }
    const GUID& subType() const noexcept { return m_subType; }
    const Texts& texts() const noexcept { return m_texts; }

private:
    typename COMPtr<I>::pointer m_component;
    COMPtr<IPart>::pointer m_part;
    GUID m_subType;
    Texts m_texts;
};
}
