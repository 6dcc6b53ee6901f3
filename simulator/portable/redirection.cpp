#include "simulator/redirection.h"

namespace sim
{
Redirection::Redirection(const void*) : m_module(nullptr) {}

Redirection::~Redirection() = default;
}
