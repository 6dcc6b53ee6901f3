#include "simulator/windows/server/message.h"

#include "simulator/core/utf16.h"

#include <windows.h>

#include <vector>

namespace sim::server
{
void writeMessage(const std::string& text)
{
    const std::string line = "SonavitMachine: " + text + "\n";
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    OutputDebugStringW(utf16(line).data());
}
}
