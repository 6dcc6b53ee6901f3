#include "client/references/recognition.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace
{
using namespace sonavit;
using namespace sonavit::references;
using Evidence = Candidate::Evidence;

/// What is known of a device with everything.
Traits complete()
{
    Traits traits;
    traits.flow = Flow::input;
    traits.endpointId = "{0.0.1.00000000}.{1}";
    traits.instanceId = "USB\\VID_1111&PID_2222&MI_00\\7&1&0&0000";
    traits.vendor = "USB:1111";
    traits.product = "2222";
    traits.function = "00";
    traits.serial = "SN1";
    traits.container = std::string(16, 'c');
    traits.jackType = std::string(16, 'j');
    traits.formFactor = formFactorBytes(FormFactor::headset);
    traits.jackPlace = std::string(6, 'p');
    traits.description = "Microphone";
    traits.interfaceName = "USB Headset";
    traits.driver = std::string(8, 'd');
    return traits;
}

/// One member after the other is lost or another one.
Traits with(std::string Traits::*member, const std::string& value, Traits traits = complete())
{
    traits.*member = value;
    return traits;
}

std::optional<Evidence> evidence(const Traits& kept, const Traits& found)
{
    const std::optional<Recognition> recognition = recognise(kept, found);
    return recognition ? std::optional<Evidence>(recognition->evidence) : std::nullopt;
}

/// The ladder, rung by rung: what is above a rung differs or is not known.
TEST(Recognise, GoesDownTheEvidenceFromTheMostCertain)
{
    const Traits kept = complete();
    Traits found = kept;
    EXPECT_EQ(evidence(kept, found), Evidence::endpointId);

    found.endpointId = "{0.0.1.00000000}.{2}";
    EXPECT_EQ(evidence(kept, found), Evidence::serialNumber);

    found.serial.clear();
    EXPECT_EQ(evidence(kept, found), Evidence::container);

    found.container = std::string(16, 'x');
    EXPECT_EQ(evidence(kept, found), Evidence::instanceId);

    found.instanceId = "USB\\VID_1111&PID_2222&MI_00\\7&2&0&0000";
    EXPECT_EQ(evidence(kept, found), Evidence::vendorAndProduct);

    found.product = "3333";
    EXPECT_EQ(evidence(kept, found), Evidence::name);

    found.description = "Line In";
    EXPECT_EQ(evidence(kept, found), std::nullopt);
}

TEST(Recognise, NeedsAnEqualFlowForEachEvidence)
{
    Traits found = complete();
    found.flow = Flow::output;

    EXPECT_EQ(evidence(complete(), found), std::nullopt);
}

TEST(Recognise, NeedsVendorProductAndJackBesideASerialNumber)
{
    const Traits found = with(&Traits::endpointId, "other");
    Traits alone; // nothing but what the serial number needs
    alone.flow = Flow::input;
    for (std::string Traits::*const member : {&Traits::vendor, &Traits::product, &Traits::serial, &Traits::jackType})
        alone.*member = found.*member;

    EXPECT_EQ(evidence(alone, found), Evidence::serialNumber);
    EXPECT_EQ(evidence(with(&Traits::vendor, "USB:9999", alone), found), std::nullopt);
    EXPECT_EQ(evidence(with(&Traits::product, "9999", alone), found), std::nullopt);
    EXPECT_EQ(evidence(with(&Traits::vendor, "", alone), found), std::nullopt);
    EXPECT_EQ(evidence(with(&Traits::jackType, std::string(16, 'x'), alone), found), std::nullopt);
    EXPECT_EQ(evidence(with(&Traits::serial, "sn1", alone), found), Evidence::serialNumber);
}

TEST(Recognise, NeedsTheJackForEachEvidenceButIdAndName)
{
    const Traits kept = complete();
    Traits found = with(&Traits::jackType, std::string(16, 'x'));
    EXPECT_EQ(evidence(kept, found), Evidence::endpointId);

    found.endpointId = "other";
    EXPECT_EQ(evidence(kept, found), Evidence::name);
    EXPECT_EQ(recognise(kept, found)->reason, "same name, other kind of jack");
}

/// Drivers report the type of a jack only while its endpoint is active or unplugged.
TEST(Recognise, ComparesTheFormFactorIfTheTypeOfAJackIsNotKnown)
{
    const Traits kept = complete();
    Traits found = with(&Traits::endpointId, "other", with(&Traits::jackType, ""));
    EXPECT_EQ(evidence(kept, found), Evidence::serialNumber);
    EXPECT_EQ(evidence(found, with(&Traits::endpointId, "a third")), Evidence::serialNumber);

    found.formFactor = formFactorBytes(FormFactor::lineLevel);
    EXPECT_EQ(evidence(kept, found), Evidence::name);

    found.formFactor.clear();
    EXPECT_EQ(evidence(kept, found), Evidence::name);

    const Traits neither = with(&Traits::jackType, "", with(&Traits::formFactor, ""));
    EXPECT_EQ(evidence(neither, found), Evidence::serialNumber);
}

TEST(Recognise, GoesByTheTypeOfAJackIfTheFormFactorDiffers)
{
    const Traits found =
        with(&Traits::endpointId, "other", with(&Traits::formFactor, formFactorBytes(FormFactor::microphone)));

    EXPECT_EQ(evidence(complete(), found), Evidence::serialNumber);
}

TEST(Recognise, NeverTakesADeviceForAnotherOfItsModelWithAnotherSerialNumber)
{
    const Traits kept = complete();
    const Traits found = with(&Traits::serial, "SN2", with(&Traits::endpointId, "other"));

    EXPECT_EQ(evidence(kept, found), std::nullopt);
    EXPECT_EQ(evidence(kept, with(&Traits::serial, "SN2")), Evidence::endpointId);
}

TEST(Recognise, ComparesWhatIsNotKnownWithNothing)
{
    Traits kept;
    Traits found;

    EXPECT_EQ(evidence(kept, found), std::nullopt);
    kept.description = found.description = "Microphone";
    EXPECT_EQ(evidence(kept, found), Evidence::name);
    found.interfaceName = "USB Headset";
    EXPECT_EQ(evidence(kept, found), std::nullopt);
    std::swap(kept, found);
    EXPECT_EQ(evidence(kept, found), std::nullopt);
}

TEST(Recognise, RanksByWhatElseIsEqualInThisOrder)
{
    const Traits kept = complete();
    const Traits other = with(&Traits::endpointId, "other");
    std::string Traits::*const members[] = {&Traits::container,   &Traits::instanceId, &Traits::function,
                                            &Traits::description, &Traits::jackPlace,  &Traits::interfaceName};
    Traits lessAndLess = other;
    for (auto member = std::rbegin(members); member != std::rend(members); ++member)
    {
        const auto before = recognise(kept, lessAndLess)->agreement;
        lessAndLess.*(*member) = "x";
        const auto after = recognise(kept, lessAndLess)->agreement;
        EXPECT_LT(after, before);
        // One that is equal here outweighs all that come after it.
        EXPECT_LT(recognise(kept, with(*member, "x", other))->agreement, recognise(kept, other)->agreement);
    }
}
}
