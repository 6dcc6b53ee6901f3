/// @file
/// Wave functions of the simulated machine on Windows.
#pragma once

#include <vector>

namespace sim
{
/// Makes a module of this process call the simulated machine's wave functions instead of the system's, from
/// construction to destruction. Off Windows, where there are no others, it does nothing.
///
/// It changes the import table of the module; other modules are not affected. While no machine runs, the system
/// answers. Journal and fault plan see the calls as they do off Windows. A module can have one redirection at a time,
/// and its code must not run on other threads while the redirection is constructed or destroyed.
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
