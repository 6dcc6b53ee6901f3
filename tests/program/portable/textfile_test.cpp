#include "tools/sonavit/textfile.h"

#include "tools/sonavit/failure.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>

using namespace sonavit::program;

namespace
{
/// While it lives, this process writes no file that is longer than some bytes: the disk is full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes) : m_action(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_action);
    }

    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before = {};
    void (*m_action)(int);
};

/// A folder of its own; removed at the end.
class ProgramReplaceFile : public testing::Test
{
protected:
    ProgramReplaceFile()
        : folder(std::filesystem::temp_directory_path() / ("replaced" + std::to_string(getpid()))),
          file((folder / "file.json").string())
    {
        std::filesystem::create_directory(folder);
    }

    ~ProgramReplaceFile() override { std::filesystem::remove_all(folder); }

    const std::filesystem::path folder;
    const std::string file;
};
}

TEST_F(ProgramReplaceFile, LeavesTheFileAloneIfTheDiskIsFull)
{
    replaceFile(file, "before");
    {
        const FullDisk disk(10);
        EXPECT_THROW(replaceFile(file, std::string(100, 'x')), OperationFailure);
    }

    EXPECT_EQ("before", readFile(file));
    EXPECT_FALSE(std::filesystem::exists(file + ".part"));
    replaceFile(file, "after");
    EXPECT_EQ("after", readFile(file));
}
