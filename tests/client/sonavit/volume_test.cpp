#include "sonavit/volume.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>

using namespace sonavit;

namespace
{
constexpr double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::nan("");

template<class T>
std::string printed(const T& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

/// Writes 48000 as 48,000 and 0.5 as 0;5.
class OtherNumbers : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override { return ';'; }
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\1"; }
};
}

TEST(Percent, IsClamped)
{
    EXPECT_EQ(0, Percent(-0.1).value());
    EXPECT_EQ(0, Percent(-infinity).value());
    EXPECT_EQ(100, Percent(100.5).value());
    EXPECT_EQ(100, Percent(infinity).value());
    EXPECT_EQ(33.3, Percent(33.3).value());
    EXPECT_FALSE(std::signbit(Percent(-0.0).value()));
}

TEST(Percent, RefusesWhatIsNoNumber)
{
    EXPECT_THROW(Percent{notANumber}, std::invalid_argument);
    EXPECT_THROW(Decibels{notANumber}, std::invalid_argument);
}

TEST(Percent, IsRoundedHalfUp)
{
    EXPECT_EQ(0u, Percent(0.49999999999999994).rounded());
    EXPECT_EQ(1u, Percent(0.5).rounded());
    EXPECT_EQ(2u, Percent(1.5).rounded());
    EXPECT_EQ(3u, Percent(2.5).rounded());
    EXPECT_EQ(99u, Percent(99.499).rounded());
    EXPECT_EQ(100u, Percent(99.5).rounded());
    EXPECT_EQ(100u, Percent(100).rounded());
}

TEST(Percent, IsComparedByItsValue)
{
    EXPECT_LT(Percent(1), Percent(2));
    EXPECT_EQ(Percent(1), Percent(1));
    EXPECT_NE(Percent(1), Percent(1.1));
    EXPECT_LT(Decibels(-2), Decibels(-1));
    EXPECT_NE(Decibels(-2), Decibels(-1));
    EXPECT_GT(Percent(2), Percent(1));
    EXPECT_LE(Percent(2), Percent(2));
    EXPECT_GE(Percent(2), Percent(2));
    EXPECT_FALSE(Percent(2) <= Percent(1) || Percent(1) >= Percent(2) || Percent(2) > Percent(2));
    EXPECT_GT(Decibels(-1), Decibels(-2));
    EXPECT_LE(Decibels(-1), Decibels(-1));
    EXPECT_GE(Decibels(-1), Decibels(-1));
    EXPECT_FALSE(Decibels(2) <= Decibels(1) || Decibels(1) >= Decibels(2) || Decibels(2) > Decibels(2));
}

TEST(Percent, IsPrintedAsAWholeNumber)
{
    EXPECT_EQ("40%", printed(Percent(39.5)));
}

TEST(Decibels, ArePrintedWithTwoDecimalsAndNoSignOfZero)
{
    EXPECT_EQ("-12.50 dB", printed(Decibels(-12.5)));
    EXPECT_EQ("0.00 dB", printed(Decibels(-0.001)));
    EXPECT_EQ("0.00 dB", printed(Decibels(-0.0)));
    EXPECT_EQ("-0.01 dB", printed(Decibels(-0.008)));
    EXPECT_EQ("-inf dB", printed(Decibels(-infinity)));
}

TEST(Decibels, ArePrintedAlikeInEachLocale)
{
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new OtherNumbers));
    out << Decibels(-12.5) << " " << Percent(100);

    EXPECT_EQ("-12.50 dB 100%", out.str());
}

TEST(Level, ShowsWhatIsKnown)
{
    EXPECT_EQ("40% (-18.00 dB)", (Level{Percent(40), Decibels(-18)}.sentence()));
    EXPECT_EQ("40%", (Level{Percent(40), std::nullopt}.sentence()));
    EXPECT_EQ("-18.00 dB", (Level{std::nullopt, Decibels(-18)}.sentence()));
    EXPECT_EQ("-", Level().sentence());
}

TEST(Volume, ShowsItsMasterAndWhetherItIsMuted)
{
    Volume volume;
    volume.master.percent = Percent(40);
    EXPECT_EQ("40%", volume.sentence());
    volume.isMuted = false;
    EXPECT_EQ("40%", volume.sentence());
    volume.isMuted = true;
    EXPECT_EQ("40%, muted", volume.sentence());
}

TEST(Volume, IsEqualIfEachMemberIs)
{
    const auto differs = [](auto change)
    {
        Volume volume;
        change(volume);
        return volume != Volume() && volume == Volume(volume);
    };

    EXPECT_TRUE(differs([](Volume& v) { v.master.percent = Percent(0); }));
    EXPECT_TRUE(differs([](Volume& v) { v.master.decibels = Decibels(0); }));
    EXPECT_TRUE(differs([](Volume& v) { v.range.emplace(); }));
    EXPECT_TRUE(differs([](Volume& v) { v.channels.emplace(); }));
    EXPECT_TRUE(differs([](Volume& v) { v.isMuted = false; }));
    EXPECT_TRUE(differs([](Volume& v) { v.isInHardware = false; }));
}

TEST(LevelRange, EqualsItsCopyEvenIfItIsNoNumber)
{
    const LevelRange range = {notANumber, 0, 1};
    const LevelRange copy = range;

    EXPECT_EQ(range, copy);
    EXPECT_NE(range, (LevelRange{0, 0, 1}));
    EXPECT_NE((LevelRange{0, 1, 1}), (LevelRange{0, 2, 1}));
    EXPECT_NE((LevelRange{0, 1, 1}), (LevelRange{0, 1, 2}));
}

TEST(Volume, IsPrintedWithAllItsMembers)
{
    Volume volume;
    volume.master = {Percent(40), Decibels(-18)};
    volume.range = {-65.25, 0, 0.75};
    volume.channels.emplace(2, Level{Percent(40), std::nullopt});
    volume.isMuted = true;
    volume.isInHardware = false;

    EXPECT_EQ("Volume(master: 40% (-18.00 dB), range: -65.25 to 0.00 dB in steps of 0.75, channels: [40%, 40%], "
              "isMuted: yes, isInHardware: no)",
              printed(volume));
}
