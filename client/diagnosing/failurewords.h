/// @file
/// What a failing platform call means for people.
#pragma once

#include <string>

namespace sonavit::diagnosing
{
/// About the calls of one operation.
struct FailureWords
{
    const char* operation; ///< "IMMDevice::Activate"
    const char* argument;  ///< the first one, with properties by name; empty: any
    const char* rule;      ///< Finding::rule
    const char* what;      ///< begins the sentence; @ stands for the part
    const char* effect;    ///< may be empty
};

/// Words for a call.
/// @param argument the first one, as a fault of a machine has it; may be empty
const FailureWords& wordsFor(const std::string& operation, const std::string& argument);

/// The words for all properties that have none of their own.
bool areForAnyProperty(const FailureWords& words) noexcept;
}
