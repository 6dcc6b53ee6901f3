// Counts what the tests of this process do between threads, for the closing line of ./test tsan.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <string>

namespace
{
std::atomic<unsigned> begun{0}; ///< threads

/// Adds up the property "events" of the tests.
class Counts : public testing::EmptyTestEventListener
{
    void OnTestEnd(const testing::TestInfo& test) override
    {
        for (int number = 0; number < test.result()->test_property_count(); ++number)
        {
            const testing::TestProperty& property = test.result()->GetTestProperty(number);
            if (std::string(property.key()) == "events")
                m_events += std::strtoul(property.value(), nullptr, 10);
        }
    }

    void OnTestProgramEnd(const testing::UnitTest& program) override
    {
        std::cout << "between threads: " << program.successful_test_count() << " tests, " << begun << " threads, "
                  << m_events << " events" << std::endl;
    }

    unsigned long m_events = 0;
};

const bool isListening = []
{
    testing::UnitTest::GetInstance()->listeners().Append(new Counts); // which GoogleTest deletes
    return true;
}();
}

/// In place of the system's function, which it calls.
extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* attributes,
                                                                     void* (*function)(void*), void* argument) noexcept
{
    using Function = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const Function create = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "pthread_create"));
    ++begun;
    return create(thread, attributes, function, argument);
}
