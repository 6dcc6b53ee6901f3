/// The commands, one function each. They print their answer to the environment's output and throw OperationFailure or
/// UsageError if they cannot do what they were asked for.
#pragma once

#include "tools/sonavit/session.h"

namespace sonavit::program
{
/// What a command works with.
struct Context
{
    const Environment& environment;
    const Arguments& arguments;
    Session& session;
};

void runList(Context& context);
void runShow(Context& context);
void runExplain(Context& context);
void runControls(Context& context);
void runSelectors(Context& context);
void runGraph(Context& context);
void runAsk(Context& context);
void runGetVolume(Context& context);
void runSetVolume(Context& context);
void runMute(Context& context);
void runSetControl(Context& context);
void runSelect(Context& context);
void runSave(Context& context);
void runRestore(Context& context);
void runCapture(Context& context);
void runFind(Context& context);
void runRefer(Context& context);
void runResolve(Context& context);
void runDoctor(Context& context);
void runMonitor(Context& context);
void runFormat(Context& context);
}
