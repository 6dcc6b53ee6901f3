#include "client/reading/idindex.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

using sonavit::EndpointId;

namespace reading = sonavit::reading;

namespace
{
class IdIndexFind : public testing::Test
{
protected:
    auto idAt() const
    {
        return [this](std::size_t position) -> const EndpointId& { return m_ids[position]; };
    }

    bool add(const std::string& id)
    {
        m_ids.emplace_back(id);
        return m_index.add(m_ids.size() - 1, idAt());
    }

    std::optional<std::size_t> find(const std::string& id) const { return m_index.find(EndpointId(id), idAt()); }

private:
    std::vector<EndpointId> m_ids;
    reading::IdIndex m_index;
};

TEST_F(IdIndexFind, ReturnsNothingOfAnEmptyList)
{
    EXPECT_FALSE(find("a"));
    EXPECT_FALSE(find(""));
}

TEST_F(IdIndexFind, ReturnsThePositionOfEachIdHoweverManyThereAre)
{
    constexpr std::size_t count = 1000;
    for (std::size_t number = 0; number < count; ++number)
        ASSERT_TRUE(add("{0.0.0.00000000}." + std::to_string(number)));

    for (std::size_t number = 0; number < count; ++number)
        EXPECT_EQ(number, find("{0.0.0.00000000}." + std::to_string(number)));
    EXPECT_FALSE(find("{0.0.0.00000000}.1000"));
}

TEST_F(IdIndexFind, IgnoresTheCaseOfLetters)
{
    EXPECT_TRUE(add("{AB}.cd"));

    EXPECT_EQ(0u, find("{ab}.CD"));
}

TEST_F(IdIndexFind, KeepsTheFirstOfTwoEqualIds)
{
    EXPECT_TRUE(add("first"));
    EXPECT_TRUE(add("second"));

    EXPECT_FALSE(add("FIRST"));

    EXPECT_EQ(0u, find("first"));
    EXPECT_EQ(1u, find("second"));
}

TEST_F(IdIndexFind, TellsIdsWithTheSameHashApart)
{
    ASSERT_EQ(sonavit::hashId("@"), sonavit::hashId("`"));

    EXPECT_TRUE(add("@"));
    EXPECT_FALSE(find("`"));
    EXPECT_TRUE(add("`"));

    EXPECT_EQ(0u, find("@"));
    EXPECT_EQ(1u, find("`"));
}
}
