#include "tests/ends/machine/lastwords.h"

extern "C" int __cxa_atexit(void (*function)(void*), void* argument, void* module) noexcept;

namespace ends
{
namespace
{
void (*lastWords)() = nullptr;

void say(void*)
{
    if (lastWords != nullptr)
        lastWords();
}

/// What is registered first is called last. This runs before the libraries' own initialization, and the registration
/// belongs to no module, so it is not called with the end of one.
#if defined(__SANITIZE_ADDRESS__) || defined(__clang__)
__attribute__((no_sanitize("address", "undefined")))
#endif
void registerFirst()
{
    static_cast<void>(__cxa_atexit(&say, nullptr, nullptr));
}

__attribute__((section(".preinit_array"), used)) void (*const first)() = &registerFirst;
}

void sayAtTheVeryEnd(void (*words)())
{
    lastWords = words;
}
}
