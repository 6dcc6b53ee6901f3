/// @file
/// Where a machine may contain something about its owner.
#pragma once

#include "simulator/machine/machine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sonavit::anonymity
{
/// What is done at these places.
class PlaceVisitor
{
public:
    PlaceVisitor() = default;
    PlaceVisitor(const PlaceVisitor&) = delete;
    PlaceVisitor& operator=(const PlaceVisitor&) = delete;
    virtual ~PlaceVisitor() = default;

    /// Ids and all other strings, UTF-8.
    virtual void text(std::string& text) = 0;
    virtual void guid(GUID& guid) = 0;
    /// A number of 64 bits.
    virtual void number(std::uint64_t& number) = 0;
    virtual void bytes(std::vector<std::uint8_t>& bytes) = 0;
};

/// Visits each place of @p machine in an order that depends on the machine's structure alone. The words of the platform
/// in faults and latencies, such as the names of interfaces and property keys, are no such places.
void visitPlaces(sim::Machine& machine, PlaceVisitor& visitor);
}
