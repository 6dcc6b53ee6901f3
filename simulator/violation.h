/// @file
/// What a client must not do while it is called.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

namespace sim
{
/// Something that Windows forbids a client to do in a callback, and that a client did.
///
/// On Windows it may deadlock or crash; the simulated machine carries it out all the same. The last reference on an
/// object may be released if the object was made in the same callback, or if the callback is OnDeviceRemoved and the
/// object belongs to the removed endpoint: its device, store, topology, parts or volume. The enumerator has no last
/// release, as the machine keeps a reference.
///
/// A callback must not wait for any thread that is in a call. It is reported if that call is an unregistration of the
/// client that is being called: no other call waits for callbacks, so a callback that waits for one is not
/// distinguishable from one that takes long.
struct Violation
{
    enum class Kind
    {
        registration,   ///< it registered a client, of any kind
        unregistration, ///< it unregistered a client, of any kind
        lastRelease,    ///< it released the last reference on an object of the machine
        wait,           ///< it did not return while another thread waited for it in an unregistration
    };

    Kind kind = Kind::registration;
    std::string call;      ///< JournalEntry::call() and its object; for `wait` the unregistration that waits
    std::size_t place = 0; ///< the call's index in Journal::entries(); if it is not recorded, that of the next entry
    std::string callback;  ///< JournalEntry::call() of the callback

    /// One line with all of it.
    std::string describe() const;
};

/// Writes describe(); GoogleTest shows failures with it.
std::ostream& operator<<(std::ostream& stream, const Violation& violation);
}
