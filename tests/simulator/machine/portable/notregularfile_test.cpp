#include "simulator/machine/file/machinefile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

namespace
{
std::string errorOf(const std::string& file)
{
    try
    {
        sim::findMachine(file);
        return "no error";
    }
    catch (const sim::MachineFileError& error)
    {
        return error.what();
    }
}

TEST(MachineFileKind, IsRefusedForAPipeWithoutOpeningIt)
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "sonavit-machine-pipe";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const std::string pipe = (folder / "pipe.json").u8string();
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));

    const std::string error = errorOf(pipe);

    EXPECT_EQ(pipe + ": expected a machine file, found something that is not a regular file", error);
    std::filesystem::remove_all(folder);
}

TEST(MachineFileKind, IsRefusedForADevice)
{
    EXPECT_EQ("/dev/zero: expected a machine file, found something that is not a regular file", errorOf("/dev/zero"));
}
}
