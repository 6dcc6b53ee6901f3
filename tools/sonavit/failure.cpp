#include "tools/sonavit/failure.h"

#include "qor/exception.h"
#include "simulator/faultplan.h"
#include "tools/sonavit/output/text.h"

#include <exception>
#include <new>

namespace sonavit::program
{
namespace
{
constexpr std::size_t longestSentence = 1000;
constexpr const char* noMemory = "out of memory";

Failure classified()
{
    try
    {
        throw;
    }
    catch (const UsageError& error)
    {
        return {exitUsage, error.what()};
    }
    catch (const NotThere& error)
    {
        return {exitNotThere, error.what()};
    }
    catch (const OperationFailure& error)
    {
        return {exitFailed, error.what()};
    }
    catch (const sim::InjectedException& error)
    {
        return {exitFailed, "the simulated machine threw an exception: " + std::string(error.what())};
    }
    catch (const std::bad_alloc&)
    {
        return {exitFailed, noMemory};
    }
    catch (const qor::NullPointer&)
    {
        return {exitFailed, noMemory};
    }
    catch (const qor::Exception&) // a precondition of the library that the platform's answers did not meet
    {
        return {exitFailed, "the audio system returned an inconsistent answer"};
    }
    catch (const std::exception& error)
    {
        return {exitFailed, "internal error: " + std::string(error.what())};
    }
    catch (...)
    {
        return {exitFailed, "internal error"};
    }
}
}

void raise(const Problem& problem, const std::string& intention)
{
    const std::string sentence = (intention.empty() ? "" : intention + ": ") + problem.sentence();
    switch (problem.kind())
    {
    case Problem::Kind::notThere:
        throw NotThere(sentence);
    case Problem::Kind::ambiguous:
        throw UsageError(sentence);
    default:
        throw OperationFailure(sentence);
    }
}

Failure currentFailure()
{
    if (std::current_exception() == nullptr) // without an exception, throwing it again would end the process
        return {exitFailed, "internal error"};
    const Failure failure = classified();
    return {failure.code, shortened(escaped(failure.sentence), longestSentence)};
}
}
