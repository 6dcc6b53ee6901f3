// Loads two modules: a caller of the library's factory, and then the library with its user. Modules end in the reverse
// order, so the caller's static object is destroyed after the library's and meets the factory once more.
//
//   late_host CALLER USER

#include "tests/unloading/module.h"

#include <cstdlib>

int main(int count, char** words)
{
    if (count != 3)
        return 2;
    const unloading::Module caller(words[1]);
    const unloading::Module user(words[2]);
    if (!caller.isLoaded() || !user.isLoaded())
        return 3;
    const auto askFactory = user.function<const char*()>("askFactory");
    caller.function<void(const char* (*)())>("askNowAndAtTheEnd")(askFactory);
    return EXIT_SUCCESS;
}
