#include "tools/sonavit/lastwords.h"

#include "tools/sonavit/failure.h"

#include <cstdlib>
#include <utility>

namespace sonavit::program
{
namespace
{
/// Not destroyed: a thread of the platform may need it while the process ends.
std::function<void()>& spoken()
{
    static auto* const words = new std::function<void()>;
    return *words;
}

/// Destructors do not run any more, so that no further exception can follow.
[[noreturn]] void end()
{
    const std::function<void()> speak = std::exchange(spoken(), {});
    try
    {
        if (speak)
            speak();
    }
    catch (...)
    {
        std::_Exit(exitFailed); // there is nowhere left to report to
    }
    std::_Exit(exitFailed);
}
}

LastWords::LastWords(std::function<void()> speak)
{
    spoken() = std::move(speak);
    m_before = std::set_terminate(end);
}

LastWords::~LastWords()
{
    std::set_terminate(m_before);
    spoken() = {};
}
}
