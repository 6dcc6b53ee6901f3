// What an element sees of its array while it is destroyed: the old elements, until all of them are destroyed.
#include "qor/array.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using qor::Array;
using testing::ElementsAre;

namespace
{
/// Records, when it is destroyed, size and capacity of the watched array.
class Observer
{
public:
    Observer() = default;
    Observer(const Observer&) = default;
    Observer& operator=(const Observer&) = default;

    ~Observer() noexcept(false)
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

    static inline const Array<Observer>* watched = nullptr;
    static inline bool throws = false;
    static inline std::vector<std::string> seen;
};

struct ArrayOrder : testing::Test
{
    ArrayOrder() { Observer::seen.clear(); }
    ~ArrayOrder() override { Observer::watched = nullptr; }

    static Array<Observer> filled(unsigned int count)
    {
        Array<Observer> array;
        for (unsigned int i = 0; i < count; ++i)
            array.append(Observer());
        return array;
    }
};
}

TEST_F(ArrayOrder, ClearingLosesTheOldBlockAfterItsElementsAreDestroyed)
{
    Array<Observer> array = filled(2);
    Observer::watched = &array;

    array.clear();

    Observer::watched = nullptr;
    EXPECT_THAT(Observer::seen, ElementsAre("2 of 8", "2 of 8"));
    EXPECT_EQ(0u, array.size());
}

TEST_F(ArrayOrder, AssignmentLosesTheOldBlockAfterItsElementsAreDestroyed)
{
    Array<Observer> array = filled(2);
    const Array<Observer> other = filled(1);
    Observer::watched = &array;

    array = other;

    Observer::watched = nullptr;
    EXPECT_THAT(Observer::seen, ElementsAre("2 of 8", "2 of 8"));
    EXPECT_EQ(1u, array.size());
}

TEST_F(ArrayOrder, DestructionLosesTheBlockAfterItsElementsAreDestroyed)
{
    {
        const Array<Observer> array = filled(2);
        Observer::watched = &array;
    }

    EXPECT_THAT(Observer::seen, ElementsAre("2 of 8", "2 of 8"));
}

TEST_F(ArrayOrder, GrowthStoresTheNewBlockAfterTheOldElementsAreDestroyed)
{
    Array<Observer> array = filled(2);
    Observer::watched = &array;

    array.ensureCapacity(9);

    Observer::watched = nullptr;
    EXPECT_THAT(Observer::seen, ElementsAre("2 of 8", "2 of 8"));
    EXPECT_EQ(2u, array.size());
    EXPECT_EQ(16u, array.capacity());
}

TEST_F(ArrayOrder, GrowthStoresTheNewBlockEvenIfAnOldElementThrows)
{
    Array<Observer> array = filled(2);
    Observer::watched = &array;
    Observer::throws = true;

    EXPECT_THROW(array.ensureCapacity(9), int);

    Observer::watched = nullptr;
    EXPECT_THAT(Observer::seen, ElementsAre("2 of 8", "2 of 8"));
    EXPECT_EQ(2u, array.size());
    EXPECT_EQ(16u, array.capacity());
}

TEST_F(ArrayOrder, ClearingLosesTheOldBlockEvenIfAnElementThrows)
{
    Array<Observer> array = filled(2);
    Observer::watched = &array;
    Observer::throws = true;

    EXPECT_THROW(array.clear(), int);

    Observer::watched = nullptr;
    EXPECT_EQ(0u, array.size());
    EXPECT_EQ(0u, array.capacity());
}
