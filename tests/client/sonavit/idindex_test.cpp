#include "sonavit/idindex.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace
{
class IdIndexFind : public testing::Test
{
protected:
    auto idAt() const
    {
        return [this](std::size_t position) -> std::string_view { return m_ids[position]; };
    }

    std::size_t add(const std::string& id)
    {
        m_ids.emplace_back(id);
        return m_index.add(m_ids.size() - 1, idAt());
    }

    std::optional<std::size_t> find(const std::string& id) const { return m_index.find(id, idAt()); }

private:
    std::vector<std::string> m_ids;
    sonavit::IdIndex m_index;
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
        ASSERT_EQ(number, add("{0.0.0.00000000}." + std::to_string(number)));

    for (std::size_t number = 0; number < count; ++number)
        EXPECT_EQ(number, find("{0.0.0.00000000}." + std::to_string(number)));
    EXPECT_FALSE(find("{0.0.0.00000000}.1000"));
}

TEST_F(IdIndexFind, IgnoresTheCaseOfLetters)
{
    add("{AB}.cd");

    EXPECT_EQ(0u, find("{ab}.CD"));
}

TEST_F(IdIndexFind, KeepsTheFirstOfTwoEqualIds)
{
    EXPECT_EQ(0u, add("first"));
    EXPECT_EQ(1u, add("second"));

    EXPECT_EQ(0u, add("FIRST"));

    EXPECT_EQ(0u, find("first"));
    EXPECT_EQ(1u, find("second"));
}

TEST_F(IdIndexFind, TellsIdsWithTheSameHashApart)
{
    ASSERT_EQ(sonavit::hashId("@"), sonavit::hashId("`"));

    EXPECT_EQ(0u, add("@"));
    EXPECT_FALSE(find("`"));
    EXPECT_EQ(1u, add("`"));

    EXPECT_EQ(0u, find("@"));
    EXPECT_EQ(1u, find("`"));
}
}
