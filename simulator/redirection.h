/// @file
/// The simulated machine for every thread of a module on Windows.
#pragma once

namespace sim
{
/// Makes all code of a module of this process, on any thread, meet the simulated machine, from construction to
/// destruction. Off Windows, where the machine answers every thread anyway, it does nothing.
///
/// On Windows a Simulation by itself is found only in apartments that registered it. A redirected module finds it
/// everywhere: in any apartment, and on threads that never registered. In the module's import tables, those of
/// libraries that are loaded on demand included, it replaces
///
/// - `CoCreateInstance`, `CoCreateInstanceEx` and `CoGetClassObject`: the class `MMDeviceEnumerator` is the machine's,
///   all other classes are the system's;
/// - `waveOutGetNumDevs`, `waveInGetNumDevs`, `waveOutMessage` and `waveInMessage`.
///
/// While no machine runs, the system answers. Journal and fault plan see the calls as they do off Windows; the journal
/// records the three ways to the enumerator as `CoCreateInstance`, when an object is created. A thread without COM gets
/// CO_E_NOTINITIALIZED, as from the system. Functions that the module looks up itself (`GetProcAddress`) remain the
/// system's, and so do those of other modules.
///
/// A module can have several redirections, which end in any order; the last one restores the import tables. The module
/// must stay loaded as long as its redirections exist. Any thread may create and destroy them, also while others run
/// the module's code.
class Redirection
{
public:
    /// @param code any function of the module, such as &enumerateSoundCards. An address outside of all modules
    /// redirects nothing.
    explicit Redirection(const void* code);
    ~Redirection(); // NOLINT(performance-trivially-destructible): not on Windows
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;

private:
    [[maybe_unused]] void* const m_module; // null off Windows
};
}
