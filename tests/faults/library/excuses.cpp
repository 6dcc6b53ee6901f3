#include "tests/faults/library/excuses.h"

namespace faults::library
{
std::vector<Excuse> excuses()
{
    const char* const ended = "signal 6*terminate called after throwing an instance of 'sim::InjectedException'*";
    std::vector<Excuse> all = {
        {"*", "*", "*:*,throw", "* and *Release()*", Kind::crash,
         "a Release throws while the exception of the other failing call unwinds: the handle must rethrow, and the "
         "language ends such a process",
         ended}};
    all.push_back({"AudioDevice::baseFilter", "*", "*:throw", "IBaseFilter::Release()*", Kind::crash,
                   "the filter is handed out in a pointer of the ATL, whose destructor lets no exception out", ended});
    for (const char* const machine : {"one-closed-adapter", "adapters-closed"})
        all.push_back({"SoundCard::volumeController", machine, "*:throw", "*Release()*", Kind::crash,
                       "the endpoint is not in the graph, which the operation answers with an exception: a Release "
                       "that throws while that one unwinds ends the process",
                       ended});
    all.push_back({"OnDeviceRemoved", "ids-missing", "*", "IMMDevice::GetId()*", Kind::answer,
                   "without its id the removed endpoint is taken for the first one of the list that has none either, "
                   "whose objects no callback may end",
                   "*must not release the last reference*"});
    return all;
}
}
