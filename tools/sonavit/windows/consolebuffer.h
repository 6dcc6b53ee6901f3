#pragma once

#include <functional>
#include <streambuf>
#include <string>
#include <string_view>

namespace sonavit::program
{
/// Collects UTF-8 and writes it to a console as UTF-16 when it is flushed, and at its end.
///
/// A console shows bytes in its own code page, and some consoles show each byte of a character by itself. So only whole
/// characters are written; the first bytes of one that is not complete wait for the others.
class ConsoleBuffer final : public std::streambuf
{
public:
    /// Writes some units, never half of a surrogate pair. @return whether all of them were written
    using Write = std::function<bool(std::wstring_view)>;

    explicit ConsoleBuffer(Write write);
    ~ConsoleBuffer() override;
    ConsoleBuffer(const ConsoleBuffer&) = delete;
    ConsoleBuffer& operator=(const ConsoleBuffer&) = delete;

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    bool write(std::string_view text);

    Write m_write;
    std::string m_collected;
};
}
