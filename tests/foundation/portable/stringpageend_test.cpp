// A text that ends with the last bytes of the memory that may be read.
#include "qor/string.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <new>

using qor::String;

namespace
{
/// A page that may be read, followed by one that may not.
class LastPage
{
public:
    LastPage() : m_size(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)))
    {
        m_memory = mmap(nullptr, 2 * m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m_memory == MAP_FAILED || mprotect(static_cast<char*>(m_memory) + m_size, m_size, PROT_NONE) != 0)
            throw std::bad_alloc();
    }

    LastPage(const LastPage&) = delete;
    LastPage& operator=(const LastPage&) = delete;
    ~LastPage() { munmap(m_memory, 2 * m_size); }

    unsigned short* end() const { return reinterpret_cast<unsigned short*>(static_cast<char*>(m_memory) + m_size); }

private:
    std::size_t m_size;
    void* m_memory;
};

TEST(StringLength, ReadsNothingOfThePageAfterTheZeroUnit)
{
    const LastPage page;
    for (std::size_t length = 0; length < 40; ++length)
    {
        unsigned short* const text = page.end() - length - 1;
        for (std::size_t i = 0; i < length; ++i)
            text[i] = 'x';
        text[length] = 0;

        EXPECT_EQ(length, String(text).size());
    }
}
}
