#pragma once

#include <string>
#include <vector>

namespace support
{
/// What a Tracked throws on request.
struct Planned
{
};

/// An element that records its copies and its destruction, and throws in them on request.
class Tracked
{
public:
    explicit Tracked(int number) : m_number(number) { ++alive; }

    Tracked(const Tracked& other) : m_number(other.m_number)
    {
        if (m_number == throwingCopy)
            throw Planned();
        ++alive;
        note("copy");
    }

    Tracked& operator=(const Tracked& other)
    {
        m_number = other.m_number;
        note("assign");
        return *this;
    }

    ~Tracked() noexcept(false)
    {
        --alive;
        note("destroy");
        if (m_number == throwingDestruction)
        {
            throwingDestruction = noNumber;
            throw Planned();
        }
    }

    int number() const { return m_number; }

    /// Removes all events and requests before a test.
    static void reset()
    {
        events.clear();
        alive = 0;
        throwingCopy = noNumber;
        throwingDestruction = noNumber;
    }

    static constexpr int noNumber = -1;

    static inline std::vector<std::string> events; ///< "copy 3", "assign 3", "destroy 3"
    static inline int alive = 0;
    static inline int throwingCopy = noNumber;        ///< copies of this number throw
    static inline int throwingDestruction = noNumber; ///< the next destruction of this number throws

private:
    void note(const char* what) const { events.push_back(what + (' ' + std::to_string(m_number))); }

    int m_number;
};
}
