#pragma once

#include "libSonavit/sysinfohelper.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/support/librarytest.h"

namespace support
{
/// One more count of COM for the thread.
struct ComOnceMore
{
    ComOnceMore() { CoInitialize(nullptr); }
    ComOnceMore(const ComOnceMore&) : ComOnceMore() {}
    ComOnceMore& operator=(const ComOnceMore&) = default;
};

/// A SysInfoHelper on the fixture's thread. It cannot have its multithreaded apartment there and takes a count of COM
/// away all the same, at its end and at that of each copy, so it is given one before.
struct BalancedHelper : ComOnceMore, libSonavit::SysInfoHelper
{
};

/// Answers of the four questions, in the order analog out, digital out, line in, microphone.
typedef std::vector<bool> Answers;

struct SysInfoHelperTest : LibraryTest
{
    void runBuilt() { run(withoutGuids(builder.build())); }

    static Answers answersOf(libSonavit::SysInfoHelper& helper, const qor::String& id)
    {
        return {helper.hasAnalogOut(id), helper.hasDigitalOut(id), helper.hasLineIn(id), helper.hasMicIn(id)};
    }

    sim::MachineBuilder builder;
    const Answers none = {false, false, false, false};
};
}
