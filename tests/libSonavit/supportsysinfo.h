#pragma once

#include "libSonavit/sysinfohelper.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/support/librarytest.h"

namespace support
{
/// One more CoInitialize for the thread.
struct ComOnceMore
{
    ComOnceMore() { CoInitialize(nullptr); }
    ComOnceMore(const ComOnceMore&) : ComOnceMore() {}
    ComOnceMore& operator=(const ComOnceMore&) = default;
};

/// A SysInfoHelper on the fixture's thread. Its CoInitializeEx fails there, and its destructor and that of each copy
/// call CoUninitialize all the same, so each gets one CoInitialize before.
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
