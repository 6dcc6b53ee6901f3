/// @file
/// What the process holds of the operating system.
#pragma once

namespace faults::kept
{
struct Holdings
{
    unsigned long handles = 0; ///< elsewhere than on Windows open file descriptors
    unsigned long threads = 0;
    unsigned long kilobytes = 0; ///< of memory that no other process shares
};

Holdings holdings();
}
