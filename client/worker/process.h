/// @file
/// What happens to the process as a whole.
#pragma once

namespace sonavit::worker
{
/// Notices forks from now on. A second call does nothing.
void watchForks();
/// Whether this is a child process that was forked after watchForks(): the worker and all other threads are missing
/// here, and locks may be held for ever. Always false on Windows.
bool isForked() noexcept;

/// Whether the process is ending and the system has ended all other threads: nothing may be waited for, and locks may
/// be held for ever. Always false off Windows, where that cannot happen.
bool isEnding() noexcept;
}
