// Appends a record to the file of the recorder after each test of a program: what the test has reached.
//
// A record is a line, "<suite>.<test> <microseconds of the processor> <passed or failed> <number of blocks> <source>",
// and the numbers of the blocks in binary. The file starts with such a record named "places", whose numbers have 64
// bits: where the blocks begin.
#include "tests/mutants/recorder/recorder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{
template<class Number>
void append(const std::string& file, const std::string& title, const std::vector<Number>& numbers)
{
    std::ofstream out(file, std::ios::binary | std::ios::app);
    out << title << '\n';
    out.write(reinterpret_cast<const char*>(numbers.data()),
              static_cast<std::streamsize>(numbers.size() * sizeof(Number)));
    if (!out.flush())
        throw std::runtime_error("the record of a test cannot be written");
}

class Listener : public testing::EmptyTestEventListener
{
public:
    /// Programs that the tests start record nothing.
    explicit Listener(std::string file) : m_file(std::move(file)) { unsetenv("SONAVIT_REACHED"); }

private:
    void OnTestProgramStart(const testing::UnitTest&) override
    {
        const std::vector<std::uint64_t> places = reached::places();
        append(m_file, "places 0 passed " + std::to_string(places.size()) + " -", places);
    }

    void OnTestStart(const testing::TestInfo&) override { m_start = std::clock(); }

    void OnTestEnd(const testing::TestInfo& test) override
    {
        const auto microseconds = 1000000.0 * static_cast<double>(std::clock() - m_start) / CLOCKS_PER_SEC;
        const std::vector<std::uint32_t> blocks = reached::take();
        append(m_file,
               std::string(test.test_suite_name()) + '.' + test.name() + ' ' +
                   std::to_string(static_cast<long long>(microseconds)) +
                   (test.result()->Passed() ? " passed " : " failed ") + std::to_string(blocks.size()) + ' ' +
                   test.file(),
               blocks);
    }

    std::string m_file;
    std::clock_t m_start = 0;
};

[[maybe_unused]] const bool isListening = []
{
    if (reached::file() != nullptr)
        testing::UnitTest::GetInstance()->listeners().Append(new Listener(reached::file()));
    return true;
}();
}
