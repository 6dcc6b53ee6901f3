// A module that uses the library, and whose functions another module calls after the library's end.

#include "libSonavit/endpointdeviceenumerator.h"
#include "tests/unloading/module.h"

using libSonavit::AudioDeviceEnumeratorFactory;

/// Asks the factory for the shared enumerator. @return a sentence about the answer
UNLOADING_EXPORT const char* askFactory()
{
    if (AudioDeviceEnumeratorFactory::m_enumerator.get() != nullptr)
        return "the factory's handle is not empty";
    if (AudioDeviceEnumeratorFactory::enumerator()->deviceEnumerator().get() == nullptr)
        return "the factory has made an object without an enumerator";
    return "the factory has made an enumerator";
}
