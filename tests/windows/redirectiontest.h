/// @file
/// What the tests of the redirection share.
#pragma once

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/redirection.h"
#include "simulator/simulation.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>

namespace redirectiontest
{
inline sim::Machine twoCards()
{
    sim::MachineBuilder builder("two");
    for (const char* const name : {"First", "Second"})
    {
        sim::CardBuilder card = builder.card(name);
        card.speaker();
        card.microphone();
    }
    return builder.build();
}

inline HRESULT create(IMMDeviceEnumerator** enumerator)
{
    return CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IMMDeviceEnumerator),
                            reinterpret_cast<void**>(enumerator));
}

/// Creates an enumerator and releases it.
inline HRESULT createAndRelease()
{
    IMMDeviceEnumerator* enumerator = nullptr;
    const HRESULT result = create(&enumerator);
    if (enumerator != nullptr)
        enumerator->Release();
    return result;
}

/// Runs @p action on a new thread in an apartment of the kind @p model.
inline void inNewApartment(DWORD model, const std::function<void()>& action)
{
    std::thread(
        [&]
        {
            EXPECT_EQ(S_OK, CoInitializeEx(nullptr, model));
            action();
            CoUninitialize();
        })
        .join();
}

/// A machine that the main thread has registered.
class RedirectionTest : public testing::Test
{
protected:
    void SetUp() override
    {
        CoInitialize(nullptr);
        m_simulation = std::make_unique<sim::Simulation>(twoCards());
    }

    void TearDown() override
    {
        EXPECT_EQ(left, m_simulation->census()) << m_simulation->census();
        m_simulation.reset();
        CoUninitialize();
    }

    sim::Census left; ///< what the test leaves on the machine

    sim::Simulation& simulation() { return *m_simulation; }
    sim::Journal& journal() { return m_simulation->journal(); }

    /// How many enumerators the machine has been asked for.
    std::size_t creations() { return journal().count("CoCreateInstance"); }

private:
    std::unique_ptr<sim::Simulation> m_simulation;
};
}
