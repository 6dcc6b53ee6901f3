/// @file
/// Wave functions of the simulated machine on Windows.
#pragma once

#include <vector>

namespace sim
{
/// Makes a module of this process call the simulated machine's wave functions in place of the system's, from
/// construction to destruction. Off Windows, where there are no others, it does nothing.
///
/// The module's table of imports is changed, so that code of other modules is not affected. While no machine runs, the
/// system answers. Journal and fault plan see the calls as they do off Windows. One redirection of a module lives at a
/// time, and the module's code must not run on other threads at its beginning and end.
class WaveRedirection
{
public:
    /// @param code any function of the module, such as &enumerateSoundCards
    explicit WaveRedirection(const void* code);
    ~WaveRedirection();
    WaveRedirection(const WaveRedirection&) = delete;
    WaveRedirection& operator=(const WaveRedirection&) = delete;

private:
    struct Slot
    {
        void** place;
        void* before;
    };

    void redirect(void* module);

    std::vector<Slot> m_slots;
};
}
