// What an element sees of its array while it goes: the old elements, until all of them are gone.
#include "qor/array.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using qor::Array;
using testing::ElementsAre;

namespace
{
/// Writes down, when it is destroyed, how many elements of how many places the watched array has.
class Onlooker
{
public:
    Onlooker() = default;
    Onlooker(const Onlooker&) = default;
    Onlooker& operator=(const Onlooker&) = default;

    ~Onlooker() noexcept(false)
    {
        if (watched == nullptr)
            return;
        seen.push_back(std::to_string(watched->size()) + " of " + std::to_string(watched->capacity()));
        if (throws)
        {
            throws = false;
            throw 1;
        }
    }

    static inline const Array<Onlooker>* watched = nullptr;
    static inline bool throws = false;
    static inline std::vector<std::string> seen;
};

struct ArrayOrder : testing::Test
{
    ArrayOrder() { Onlooker::seen.clear(); }
    ~ArrayOrder() override { Onlooker::watched = nullptr; }

    static Array<Onlooker> filled(unsigned int count)
    {
        Array<Onlooker> array;
        for (unsigned int i = 0; i < count; ++i)
            array.append(Onlooker());
        return array;
    }
};
}

TEST_F(ArrayOrder, ClearingLosesTheOldBlockWhenItsElementsAreGone)
{
    Array<Onlooker> array = filled(2);
    Onlooker::watched = &array;

    array.clear();

    Onlooker::watched = nullptr;
    EXPECT_THAT(Onlooker::seen, ElementsAre("2 of 8", "2 of 8"));
    EXPECT_EQ(0u, array.size());
}

TEST_F(ArrayOrder, AssignmentLosesTheOldBlockWhenItsElementsAreGone)
{
    Array<Onlooker> array = filled(2);
    const Array<Onlooker> other = filled(1);
    Onlooker::watched = &array;

    array = other;

    Onlooker::watched = nullptr;
    EXPECT_THAT(Onlooker::seen, ElementsAre("2 of 8", "2 of 8"));
    EXPECT_EQ(1u, array.size());
}

TEST_F(ArrayOrder, TheEndLosesTheBlockWhenItsElementsAreGone)
{
    {
        const Array<Onlooker> array = filled(2);
        Onlooker::watched = &array;
    }

    EXPECT_THAT(Onlooker::seen, ElementsAre("2 of 8", "2 of 8"));
}

TEST_F(ArrayOrder, GrowthStoresTheNewBlockWhenTheOldElementsAreGone)
{
    Array<Onlooker> array = filled(2);
    Onlooker::watched = &array;

    array.ensureCapacity(9);

    Onlooker::watched = nullptr;
    EXPECT_THAT(Onlooker::seen, ElementsAre("2 of 8", "2 of 8"));
    EXPECT_EQ(2u, array.size());
    EXPECT_EQ(16u, array.capacity());
}

TEST_F(ArrayOrder, GrowthStoresTheNewBlockAlsoWhenAnOldElementThrows)
{
    Array<Onlooker> array = filled(2);
    Onlooker::watched = &array;
    Onlooker::throws = true;

    EXPECT_THROW(array.ensureCapacity(9), int);

    Onlooker::watched = nullptr;
    EXPECT_THAT(Onlooker::seen, ElementsAre("2 of 8", "2 of 8"));
    EXPECT_EQ(2u, array.size());
    EXPECT_EQ(16u, array.capacity());
}

TEST_F(ArrayOrder, ClearingLosesTheOldBlockAlsoWhenAnElementThrows)
{
    Array<Onlooker> array = filled(2);
    Onlooker::watched = &array;
    Onlooker::throws = true;

    EXPECT_THROW(array.clear(), int);

    Onlooker::watched = nullptr;
    EXPECT_EQ(0u, array.size());
    EXPECT_EQ(0u, array.capacity());
}
