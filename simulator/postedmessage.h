/// @file
/// A message that was posted to the machine's window system.
#pragma once

#include "platform/coreaudio.h"

namespace sim
{
/// The arguments of one PostMessageW.
struct PostedMessage
{
    HWND window = nullptr;
    UINT message = 0;
    WPARAM first = 0;
    LPARAM second = 0;
};

inline bool operator==(const PostedMessage& left, const PostedMessage& right)
{
    return left.window == right.window && left.message == right.message && left.first == right.first &&
           left.second == right.second;
}
}
