// A module that imports the functions of COM from a library that is loaded at the first call, and from an API set.

#include "tests/windows/redirectiontest.h"

namespace
{
using redirectiontest::inNewApartment;

/// The DLL of tests/redirected/module.cpp, loaded from construction to destruction.
class Module
{
public:
    Module() : m_module(LoadLibraryW(L"redirected_module.dll")) {}
    ~Module() { FreeLibrary(m_module); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    bool isLoaded() const { return m_module != nullptr; }
    const void* code() const { return address("createOnDemand"); }

    // Each creates an enumerator and releases it.
    HRESULT createOnDemand() const { return call("createOnDemand"); }
    HRESULT createByApiSet() const { return call("createByApiSet"); }

private:
    void* address(const char* name) const { return reinterpret_cast<void*>(GetProcAddress(m_module, name)); }
    HRESULT call(const char* name) const { return reinterpret_cast<HRESULT (*)()>(address(name))(); }

    HMODULE m_module;
};

class RedirectionImports : public redirectiontest::RedirectionTest
{
protected:
    void SetUp() override
    {
        RedirectionTest::SetUp();
        ASSERT_TRUE(module.isLoaded());
    }

    const Module module;
};
}

TEST_F(RedirectionImports, OnDemandAreReachedBeforeTheirFirstCall)
{
    const sim::Redirection redirection(module.code());

    inNewApartment(COINIT_MULTITHREADED, [&] { EXPECT_EQ(S_OK, module.createOnDemand()); });

    EXPECT_EQ(1u, creations());
}

TEST_F(RedirectionImports, OnDemandAreReachedAfterTheirFirstCallAndRestored)
{
    inNewApartment(COINIT_MULTITHREADED, [&] { module.createOnDemand(); });
    ASSERT_EQ(0u, creations());

    {
        const sim::Redirection redirection(module.code());
        inNewApartment(COINIT_MULTITHREADED, [&] { EXPECT_EQ(S_OK, module.createOnDemand()); });
        EXPECT_EQ(1u, creations());
    }
    inNewApartment(COINIT_MULTITHREADED, [&] { module.createOnDemand(); });

    EXPECT_EQ(1u, creations());
}

TEST_F(RedirectionImports, FromAnApiSetAreReached)
{
    const sim::Redirection redirection(module.code());

    inNewApartment(COINIT_MULTITHREADED, [&] { EXPECT_EQ(S_OK, module.createByApiSet()); });

    EXPECT_EQ(1u, creations());
}
