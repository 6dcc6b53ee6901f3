#pragma once

#include <ostream>
#include <sstream>
#include <streambuf>

namespace sonavit::program
{
/// Keeps back what is written to a stream, so that an answer is printed whole or not at all.
class HeldOutput
{
public:
    /// Keeps nothing back until hold().
    explicit HeldOutput(std::ostream& stream);

    /// Drops what is kept back.
    ~HeldOutput();
    HeldOutput(const HeldOutput&) = delete;
    HeldOutput& operator=(const HeldOutput&) = delete;

    void hold();

    /// Writes what has been kept back; the stream takes what comes next at once.
    void release();

    /// Drops what has been kept back; the stream takes what comes next at once.
    void drop();

private:
    std::ostream& m_stream;
    std::stringbuf m_kept;
    std::streambuf* m_before = nullptr; ///< the stream's own buffer; null while nothing is kept back
};
}
