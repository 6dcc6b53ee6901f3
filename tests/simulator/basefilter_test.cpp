#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::Wide;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;

/// The speaker with a base filter.
class SimulatedBaseFilter : public bench::SimulationTest
{
protected:
    SimulatedBaseFilter()
    {
        simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->hasBaseFilter = true; });
        EXPECT_EQ(S_OK, device(speakerId)->Activate(sim::InterfaceTraits<IBaseFilter>::iid(), CLSCTX_ALL, nullptr,
                                                    filter.putVoid()));
        simulation.journal().clear();
    }

    Held<IBaseFilter> filter;
};

TEST_F(SimulatedBaseFilter, ImplementsNoOperation)
{
    CLSID clsid = bench::enumeratorClass;
    FILTER_STATE state = State_Running;
    auto* clock = poison<IReferenceClock>();
    auto* pins = poison<IEnumPins>();
    auto* pin = poison<IPin>();
    FILTER_INFO info = {};
    auto* vendor = poison<WCHAR>();

    EXPECT_EQ(E_NOTIMPL, filter->GetClassID(&clsid));
    EXPECT_EQ(E_NOTIMPL, filter->Stop());
    EXPECT_EQ(E_NOTIMPL, filter->Pause());
    EXPECT_EQ(E_NOTIMPL, filter->Run(0));
    EXPECT_EQ(E_NOTIMPL, filter->GetState(0, &state));
    EXPECT_EQ(E_NOTIMPL, filter->SetSyncSource(nullptr));
    EXPECT_EQ(E_NOTIMPL, filter->GetSyncSource(&clock));
    EXPECT_EQ(E_NOTIMPL, filter->EnumPins(&pins));
    EXPECT_EQ(E_NOTIMPL, filter->FindPin(Wide("output"), &pin));
    EXPECT_EQ(E_NOTIMPL, filter->QueryFilterInfo(&info));
    EXPECT_EQ(E_NOTIMPL, filter->JoinFilterGraph(nullptr, nullptr));
    EXPECT_EQ(E_NOTIMPL, filter->QueryVendorInfo(&vendor));

    EXPECT_TRUE(IsEqualGUID(bench::enumeratorClass, clsid));
    EXPECT_EQ(State_Running, state);
    EXPECT_EQ(nullptr, clock);
    EXPECT_EQ(nullptr, pins);
    EXPECT_EQ(nullptr, pin);
    EXPECT_EQ(nullptr, vendor);
    const sim::JournalEntries entries = simulation.journal().entries();
    EXPECT_THAT(entries.calls(),
                ElementsAre("IBaseFilter::GetClassID()", "IBaseFilter::Stop()", "IBaseFilter::Pause()",
                            "IBaseFilter::Run()", "IBaseFilter::GetState()", "IBaseFilter::SetSyncSource()",
                            "IBaseFilter::GetSyncSource()", "IBaseFilter::EnumPins()", "IBaseFilter::FindPin(output)",
                            "IBaseFilter::QueryFilterInfo()", "IBaseFilter::JoinFilterGraph()",
                            "IBaseFilter::QueryVendorInfo()"));
    EXPECT_THAT(entries.lines(), Each(EndsWith(" on " + speakerId + " -> 0x80004001")));
}

TEST_F(SimulatedBaseFilter, RefusesNullOutParameters)
{
    EXPECT_EQ(E_POINTER, filter->GetClassID(nullptr));
    EXPECT_EQ(E_POINTER, filter->GetState(0, nullptr));
    EXPECT_EQ(E_POINTER, filter->GetSyncSource(nullptr));
    EXPECT_EQ(E_POINTER, filter->EnumPins(nullptr));
    EXPECT_EQ(E_POINTER, filter->FindPin(nullptr, nullptr));
    EXPECT_EQ(E_POINTER, filter->QueryFilterInfo(nullptr));
    EXPECT_EQ(E_POINTER, filter->QueryVendorInfo(nullptr));
}

TEST_F(SimulatedBaseFilter, IsReachedThroughEveryInterfaceThatItExtends)
{
    EXPECT_EQ(filter.get(), filter.as<IBaseFilter>().get());
    EXPECT_EQ(filter.get(), filter.as<IMediaFilter>().get());
    EXPECT_EQ(filter.get(), filter.as<IPersist>().get());
    EXPECT_EQ(filter.get(), filter.as<IUnknown>().get());
}
}
