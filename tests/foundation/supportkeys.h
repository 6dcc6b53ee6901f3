#pragma once

#include "qor/hashtable.h"

namespace support
{
/// The first unit of a key is its hash: the test chooses the chains.
struct FirstUnitHash
{
    static unsigned int hash(const qor::String& key) { return key.size() == 0 ? 0 : key.getUCS2Buffer()[0]; }
};

/// Puts all keys into one chain.
struct ConstantHash
{
    static unsigned int hash(const qor::String&) { return 7; }
};

using ExactText = qor::EqualFunc<qor::String>;
}
