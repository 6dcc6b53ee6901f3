#include "simulator/core/answeringscope.h"

#include <utility>

namespace sim
{
namespace
{
thread_local bool isAnsweringHere = false;
}

bool isAnswering() noexcept
{
    return isAnsweringHere;
}

AnsweringScope::AnsweringScope(bool isAnswering) noexcept : m_former(std::exchange(isAnsweringHere, isAnswering)) {}

AnsweringScope::~AnsweringScope()
{
    isAnsweringHere = m_former;
}
}
