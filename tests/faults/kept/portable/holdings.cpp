#include "tests/faults/kept/holdings.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace faults::kept
{
namespace
{
unsigned long statusValue(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    unsigned long value = 0;
    while (status >> word)
    {
        if (word == name && status >> value)
            return value;
    }
    return 0;
}
}

Holdings holdings()
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    const auto count = std::distance(begin(descriptors), end(descriptors));
    return {static_cast<unsigned long>(count), statusValue("Threads:"), statusValue("RssAnon:")};
}
}
