#include "tools/sonavit/heldoutput.h"

namespace sonavit::program
{
HeldOutput::HeldOutput(std::ostream& stream) : m_stream(stream) {}

HeldOutput::~HeldOutput()
{
    drop();
}

/// Changing the buffer clears the stream's errors, which the caller is to see in the end.
void HeldOutput::hold()
{
    const std::ios::iostate errors = m_stream.rdstate();
    m_before = m_stream.rdbuf(&m_kept);
    m_stream.setstate(errors);
}

void HeldOutput::release()
{
    if (m_before == nullptr)
        return;
    drop();
    m_stream << m_kept.str();
}

void HeldOutput::drop()
{
    if (m_before == nullptr)
        return;
    const std::ios::iostate errors = m_stream.rdstate();
    m_stream.rdbuf(m_before);
    m_stream.setstate(errors);
    m_before = nullptr;
}
}
