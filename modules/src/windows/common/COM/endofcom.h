#pragma once

#include "platform/coreaudio.h"

/// Calls CoUninitialize at the end of its scope, even if an exception leaves it, unless forget() was called.
class EndOfCOM
{
public:
    explicit EndOfCOM(bool isOwed = true) noexcept : m_isOwed(isOwed) {}
    EndOfCOM(const EndOfCOM&) = delete;
    EndOfCOM& operator=(const EndOfCOM&) = delete;

    ~EndOfCOM()
    {
        if (m_isOwed)
            CoUninitialize();
    }

    void forget() noexcept { m_isOwed = false; }

private:
    bool m_isOwed;
};
