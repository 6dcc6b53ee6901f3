/// What the platform sees of a copy of a list of components; included by the library's source files only.
#pragma once

#include "COM/comptr.h"
#include "libSonavit/audiopart/partview.h"
#include "qor/array.h"

namespace libSonavit
{
/// The references that a copy of a list of components holds, for as long as it lives: the platform's objects see the
/// same AddRef and Release calls in the same order. The rest of a copy, with two lists for each part, is left out.
template<class I>
class ComponentReferences
{
public:
    explicit ComponentReferences(const qor::Array<AudioComponent<I>>& components)
    {
        m_references.ensureCapacity(components.size());
        for (unsigned int i = 0; i < components.size(); ++i)
            m_references.emplace(components[i]);
    }

    ComponentReferences(const ComponentReferences&) = delete;
    ComponentReferences& operator=(const ComponentReferences&) = delete;

private:
    struct Reference
    {
        explicit Reference(const AudioComponent<I>& source)
            : component(PartView::componentHandle(source)),
              part(PartView::partHandle(source))
        {
        }

        typename COMPtr<I>::pointer component;
        COMPtr<IPart>::pointer part;
    };

    qor::Array<Reference> m_references;
};
}
