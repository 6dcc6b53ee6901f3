// A DLL that uses the client layer, as a plug-in would. The program that loads it does not link the layer, so freeing
// this DLL unloads the layer, too.

#include "tests/unloading/windowsfirst.h"

#include "sonavit/client.h"

#include <chrono>
#include <memory>
#include <thread>

namespace
{
/// A raw pointer: a System must not end as a static object of a DLL, and this one stays if the host does not end it.
sonavit::System* kept = nullptr;
sonavit::Subscription* heard = nullptr;

/// Ends with the DLL, against the rules, unless it is empty.
std::unique_ptr<sonavit::System> endsWithTheModule;

sonavit::System::Options withPatience(unsigned milliseconds)
{
    sonavit::System::Options options;
    options.patience = std::chrono::milliseconds(milliseconds);
    return options;
}
}

/// Begins a System, whose operations wait for @p patience milliseconds, and waits for its cards.
/// @return their number
extern "C" __declspec(dllexport) unsigned keepSystem(unsigned patience)
{
    kept = new sonavit::System(withPatience(patience));
    while (kept->snapshot().cards().empty())
        std::this_thread::yield();
    return static_cast<unsigned>(kept->snapshot().cards().size());
}

/// Subscribes to it; nothing may free this DLL before stopListening() then.
extern "C" __declspec(dllexport) void startListening()
{
    heard = new sonavit::Subscription(kept->subscribe([](const sonavit::Change&) {}));
}

extern "C" __declspec(dllexport) void stopListening()
{
    delete heard;
    heard = nullptr;
}

/// Makes the System a static object of this DLL.
extern "C" __declspec(dllexport) void leaveSystemToTheModule()
{
    endsWithTheModule.reset(kept);
    kept = nullptr;
}

extern "C" __declspec(dllexport) void endSystem()
{
    delete kept;
    kept = nullptr;
}
