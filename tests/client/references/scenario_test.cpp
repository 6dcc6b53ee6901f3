// References on computers before and after something has happened to them.
#include "tests/client/references/computer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using namespace sonavit;
using namespace sonavit::test;
using testing::HasSubstr;
using Evidence = Candidate::Evidence;
using Kind = Resolution::Kind;

const Guid containerA = *Guid::parse("{AAAAAAAA-0000-0000-0000-000000000001}");
const Guid containerB = *Guid::parse("{BBBBBBBB-0000-0000-0000-000000000002}");
const Guid ofComputer = *Guid::parse("{00000000-0000-0000-FFFF-FFFFFFFFFFFF}");

Device headset(const std::string& instanceId, const std::string& id, const std::string& parent = {})
{
    return {instanceId,
            parent,
            "USB Headset",
            std::nullopt,
            "usbaudio.inf:1",
            {{id + ".out", "Headphones", NodeKind::headset, Flow::output, State::active, FormFactor::headset},
             {id + ".in", "Microphone", NodeKind::headset, Flow::input, State::active, FormFactor::headset}}};
}

Device onBoard(const std::string& id, const std::string& driver = "oem7.inf:1")
{
    return {
        "HDAUDIO\\FUNC_01&VEN_10EC&DEV_0887&SUBSYS_10438445&REV_1003\\4&1A2B3C&0&0001",
        "PCI\\VEN_8086&DEV_A170\\3&11583659&0&FB",
        "High Definition Audio",
        ofComputer,
        driver,
        {{id + ".speakers"},
         {id + ".phones", "Headphones", NodeKind::headphones, Flow::output, State::unplugged, FormFactor::headphones},
         {id + ".mic", "Microphone", NodeKind::microphone, Flow::input, State::active, FormFactor::microphone}}};
}

Device notPresent(Device device)
{
    for (SimpleEndpoint& endpoint : device.endpoints)
        endpoint.state = State::notPresent;
    return device;
}

TEST(ReferenceScenario, FindsEveryEndpointAfterARestart)
{
    const Snapshot before = computer({headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a"), onBoard("b")});
    const Snapshot after = computer({onBoard("b"), headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a")});

    for (const Endpoint& endpoint : before.endpoints())
    {
        const Resolution resolution = resolve(after, referenceTo(before, endpoint.id().text()));

        EXPECT_EQ(resolution.kind, Kind::exact);
        ASSERT_EQ(resolution.candidates.size(), 1u);
        EXPECT_EQ(resolution.candidates[0].place.endpoint, endpoint);
        EXPECT_EQ(resolution.candidates[0].reason, "same endpoint");
        EXPECT_EQ(bestOf(resolution), endpoint.id().text());
    }
}

TEST(ReferenceScenario, FindsAnEndpointWhoseIdIsSpeltInAnotherCase)
{
    const Reference reference = referenceTo(computer({onBoard("b")}), "b.mic");

    EXPECT_EQ(resolve(computer({onBoard("B")}), reference).kind, Kind::exact);
}

TEST(ReferenceScenario, FindsADeviceWithASerialNumberInAnotherUsbPort)
{
    const Reference reference = referenceTo(
        computer({headset("USB\\VID_1111&PID_2222&MI_00\\7&1&0&0000", "a", "USB\\VID_1111&PID_2222\\SN42")}), "a.in");
    const Resolution resolution =
        resolve(computer({headset("USB\\VID_1111&PID_2222&MI_00\\9&2&0&0000", "b", "USB\\VID_1111&PID_2222\\SN42"),
                          onBoard("c")}),
                reference);

    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(bestOf(resolution), "b.in");
    EXPECT_EQ(resolution.candidates[0].evidence, Evidence::serialNumber);
    EXPECT_EQ(resolution.candidates[0].reason, "same device in another USB port");
    EXPECT_EQ(resolution.sentence(), "Microphone (USB Headset): same device in another USB port");
}

TEST(ReferenceScenario, FindsADeviceWithoutSerialNumberInAnotherUsbPort)
{
    const Reference reference = referenceTo(computer({headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a")}), "a.out");
    Device moved = headset("USB\\VID_1111&PID_2222\\6&1&0&4", "b");
    moved.name = "2- USB Headset";
    const Resolution resolution = resolve(computer({moved}), reference);

    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(bestOf(resolution), "b.out");
    EXPECT_EQ(resolution.candidates[0].evidence, Evidence::vendorAndProduct);
    EXPECT_EQ(resolution.candidates[0].reason, "same model in another USB port");
}

TEST(ReferenceScenario, PrefersTheMovedDeviceToItsGhosts)
{
    const Device first = headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a");
    const Device second = headset("USB\\VID_1111&PID_2222\\6&1&0&2", "b");
    const Device third = headset("USB\\VID_1111&PID_2222\\6&1&0&3", "c");
    const Resolution resolution =
        resolve(computer({notPresent(first), notPresent(second), third}), referenceTo(computer({first}), "a.out"));

    EXPECT_EQ(resolution.kind, Kind::exact);
    ASSERT_EQ(resolution.candidates.size(), 3u);
    EXPECT_EQ(resolution.candidates[0].place.endpoint.id().text(), "a.out");
    EXPECT_EQ(bestOf(resolution), "c.out");
    EXPECT_EQ(resolution.sentence(), "Headphones (USB Headset): same endpoint, not present; in its place "
                                     "Headphones (USB Headset): same model in another USB port");
}

TEST(ReferenceScenario, PrefersAPresentDeviceToAGhostThatHasMoreInCommon)
{
    const Device old = headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a");
    Device translated = headset("USB\\VID_1111&PID_2222\\6&1&0&3", "c");
    translated.endpoints[1].description = "Mikrofon";
    const Resolution resolution =
        resolve(computer({notPresent(headset("USB\\VID_1111&PID_2222\\6&1&0&2", "b")), translated}),
                referenceTo(computer({old}), "a.in"));

    ASSERT_EQ(resolution.candidates.size(), 2u);
    EXPECT_EQ(resolution.candidates[0].place.endpoint.id().text(), "c.in");
    EXPECT_EQ(bestOf(resolution), "c.in");
}

TEST(ReferenceScenario, FindsANameThatWindowsHasNumbered)
{
    Device card = onBoard("a");
    card.instanceId = "ROOT\\MEDIA\\0000";
    Device numbered = card;
    numbered.instanceId = "ROOT\\MEDIA\\0001";
    numbered.name = "12- High Definition Audio";
    numbered.endpoints[2].id = "b.mic";
    Device other = numbered;
    other.name = "12-High Definition Audio";
    const Reference reference = referenceTo(computer({card}), "a.mic");

    EXPECT_EQ(bestOf(resolve(computer({numbered}), reference)), "b.mic");
    EXPECT_EQ(resolve(computer({other}), reference).kind, Kind::none);
}

TEST(ReferenceScenario, DistinguishesTwoEqualHeadsetsBySerialNumber)
{
    const Device one = headset("USB\\VID_1111&PID_2222\\SN1", "a");
    const Device two = headset("USB\\VID_1111&PID_2222\\SN2", "b");
    const Snapshot anew =
        computer({headset("USB\\VID_1111&PID_2222\\SN2", "y"), headset("USB\\VID_1111&PID_2222\\SN1", "x")});

    EXPECT_EQ(bestOf(resolve(anew, referenceTo(computer({one, two}), "a.in"))), "x.in");
    EXPECT_EQ(bestOf(resolve(anew, referenceTo(computer({one, two}), "b.in"))), "y.in");
    EXPECT_EQ(resolve(anew, referenceTo(computer({one, two}), "a.in")).candidates.size(), 1u);
}

TEST(ReferenceScenario, NeverTakesAHeadsetForAnotherWithAnotherSerialNumber)
{
    const Device one = headset("USB\\VID_1111&PID_2222\\SN1", "a");
    const Device two = headset("USB\\VID_1111&PID_2222\\SN2", "b");
    const Reference reference = referenceTo(computer({one, two}), "a.in");

    EXPECT_EQ(resolve(computer({two}), reference).kind, Kind::none);
    EXPECT_EQ(resolve(computer({notPresent(one), two}), reference).candidates.size(), 1u);
    EXPECT_EQ(bestOf(resolve(computer({notPresent(one), two}), reference)), "a.in");
}

TEST(ReferenceScenario, CannotDistinguishTwoEqualHeadsetsWithoutSerialNumbers)
{
    const Reference reference = referenceTo(computer({headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a")}), "a.in");
    const Resolution resolution = resolve(computer({headset("USB\\VID_1111&PID_2222\\6&1&0&5", "b"),
                                                    headset("USB\\VID_1111&PID_2222\\6&1&0&6", "c"), onBoard("d")}),
                                          reference);

    EXPECT_EQ(resolution.kind, Kind::ambiguous);
    ASSERT_EQ(resolution.candidates.size(), 2u);
    EXPECT_EQ(resolution.candidates[0].rank, resolution.candidates[1].rank);
    EXPECT_FALSE(resolution.best().has_value());
    EXPECT_EQ(resolution.sentence(), "several endpoints fit equally well: Microphone (USB Headset): same model in "
                                     "another USB port; Microphone (USB Headset): same model in another USB port");
}

TEST(ReferenceScenario, TakesTheActiveOneOfTwoEqualHeadsets)
{
    const Reference reference = referenceTo(computer({headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a")}), "a.in");
    Device disabled = headset("USB\\VID_1111&PID_2222\\6&1&0&5", "b");
    disabled.endpoints[1].state = State::disabled;
    const Resolution resolution =
        resolve(computer({disabled, headset("USB\\VID_1111&PID_2222\\6&1&0&6", "c")}), reference);

    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(bestOf(resolution), "c.in");
}

TEST(ReferenceScenario, FindsTheNewEndpointOfADriverThatWasInstalledAnewWithTheGhostOfTheOldOne)
{
    const Reference reference = referenceTo(computer({onBoard("old")}), "old.mic");
    const Resolution resolution = resolve(computer({notPresent(onBoard("old")), onBoard("new")}), reference);

    EXPECT_EQ(resolution.kind, Kind::exact);
    EXPECT_EQ(bestOf(resolution), "new.mic");
    ASSERT_EQ(resolution.candidates.size(), 2u);
    EXPECT_EQ(resolution.candidates[1].evidence, Evidence::instanceId);
    EXPECT_EQ(resolution.candidates[1].reason, "same device, driver installed anew");
}

TEST(ReferenceScenario, FindsAnUnpluggedJackOfADriverThatWasInstalledAnew)
{
    const Reference reference = referenceTo(computer({onBoard("old")}), "old.phones");
    const Resolution resolution = resolve(computer({onBoard("new")}), reference);

    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(bestOf(resolution), "new.phones");
    EXPECT_EQ(resolution.sentence(),
              "Headphones (High Definition Audio): same device, driver installed anew, unplugged");
}

TEST(ReferenceScenario, SaysThatADeviceHasAnotherDriver)
{
    const Reference reference = referenceTo(computer({onBoard("old")}), "old.mic");

    EXPECT_EQ(resolve(computer({onBoard("new", "generic.inf:2")}), reference).candidates[0].reason,
              "same device, other driver");
}

TEST(ReferenceScenario, FindsARenamedEndpoint)
{
    const Reference reference = referenceTo(computer({onBoard("b")}), "b.speakers");
    Device renamed = onBoard("b");
    renamed.endpoints[0].description = "Desk";
    const Resolution resolution = resolve(computer({renamed}), reference);

    EXPECT_EQ(resolution.kind, Kind::exact);
    EXPECT_EQ(resolution.sentence(), "Desk (High Definition Audio): same endpoint, other name");
}

TEST(ReferenceScenario, FindsTheEndpointsOfASystemInAnotherLanguage)
{
    const Snapshot before = computer({onBoard("old")});
    Device translated = onBoard("new");
    translated.endpoints[0].description = "Lautsprecher";
    translated.endpoints[1].description = "Kopfh\xC3\xB6rer";
    translated.endpoints[2].description = "Mikrofon";
    translated.name = "High-Definition-Audio";
    const Snapshot after = computer({translated});

    for (const char* const name : {".speakers", ".phones", ".mic"})
    {
        const Resolution resolution = resolve(after, referenceTo(before, std::string("old") + name));

        EXPECT_EQ(resolution.kind, Kind::likely);
        EXPECT_EQ(bestOf(resolution), std::string("new") + name);
        EXPECT_EQ(resolution.candidates[0].reason, "same device, new endpoint, other name");
    }
}

TEST(ReferenceScenario, FindsACardInAnotherPciSlot)
{
    const auto card = [](const std::string& instance, const std::string& id)
    {
        return Device{"PCI\\VEN_13F6&DEV_8788&SUBSYS_85211043&REV_00\\" + instance,
                      {},
                      "PCI Audio",
                      ofComputer,
                      "oem3.inf:1",
                      {{id}}};
    };
    const Resolution resolution = resolve(computer({onBoard("x"), card("4&9&0&00E1", "b")}),
                                          referenceTo(computer({card("4&2&0&00E0", "a")}), "a"));

    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(bestOf(resolution), "b");
    EXPECT_EQ(resolution.candidates[0].reason, "same model in another PCI slot");
}

TEST(ReferenceScenario, FindsAHeadsetThatWasPairedAnew)
{
    const auto wireless = [](const std::string& number, const std::string& id, FormFactor formFactor)
    {
        return Device{"BTHHFENUM\\BTHHFPAUDIO\\8&" + number + "&0&97",
                      {},
                      "Wireless Hands-Free",
                      containerA,
                      "bthaudhid.inf:1",
                      {{id, "Headset", NodeKind::headset, Flow::input, State::active, formFactor}}};
    };
    const auto reasonFor = [&](FormFactor formFactor)
    {
        return resolve(computer({wireless("2", "b", formFactor)}),
                       referenceTo(computer({wireless("1", "a", formFactor)}), "a"))
            .candidates.at(0);
    };

    EXPECT_EQ(reasonFor(FormFactor::headset).evidence, Evidence::container);
    EXPECT_EQ(reasonFor(FormFactor::headset).reason, "same headset, paired anew");
    EXPECT_EQ(reasonFor(FormFactor::headphones).reason, "same headphones, paired anew");
    EXPECT_EQ(reasonFor(FormFactor::speakers).reason, "same Bluetooth device, paired anew");
}

TEST(ReferenceScenario, DoesNotTakeTheContainerOfTheComputerForADevice)
{
    for (const Guid& container : {ofComputer, Guid()})
    {
        Device one = onBoard("a");
        one.container = container;
        Device other = onBoard("b");
        other.container = container;
        other.instanceId = "HDAUDIO\\FUNC_01&VEN_8086&DEV_2809&SUBSYS_80860101\\5&3&0&0201";
        other.name = "Display Audio";

        EXPECT_EQ(resolve(computer({other}), referenceTo(computer({one}), "a.mic")).kind, Kind::none);
    }
}

TEST(ReferenceScenario, PrefersTheContainerToTheModel)
{
    Device one = headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a");
    Device moved = headset("USB\\VID_1111&PID_2222\\6&1&0&5", "b");
    Device other = headset("USB\\VID_1111&PID_2222\\6&1&0&6", "c");
    one.container = moved.container = containerA;
    other.container = containerB;
    const Resolution resolution = resolve(computer({other, moved}), referenceTo(computer({one}), "a.in"));

    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(bestOf(resolution), "b.in");
    EXPECT_EQ(resolution.candidates.size(), 1u);
}

TEST(ReferenceScenario, SaysThatAnEndpointIsGone)
{
    const Resolution resolution =
        resolve(computer({onBoard("b")}), referenceTo(computer({headset("USB\\VID_1&PID_2\\SN1", "a")}), "a.in"));

    EXPECT_EQ(resolution.kind, Kind::none);
    EXPECT_TRUE(resolution.candidates.empty());
    EXPECT_FALSE(resolution.best().has_value());
    EXPECT_EQ(resolution.sentence(), "no endpoint fits");
}

TEST(ReferenceScenario, NeverTakesAnOutputForAnInput)
{
    Device swapped = headset("USB\\VID_1111&PID_2222\\SN1", "a");
    const Reference reference = referenceTo(computer({swapped}), "a.in");
    std::swap(swapped.endpoints[0].id, swapped.endpoints[1].id);
    const Resolution resolution = resolve(computer({swapped}), reference);

    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(bestOf(resolution), "a.out"); // which is the input now
    EXPECT_EQ(resolution.candidates[0].evidence, Evidence::serialNumber);
    swapped.endpoints.erase(swapped.endpoints.begin() + 1);
    EXPECT_EQ(resolve(computer({swapped}), reference).kind, Kind::none);
}

TEST(ReferenceScenario, FindsEndpointsWithoutInstancePath)
{
    const auto endpoint = [](const std::string& id, const std::string& name) {
        return Device{{}, {}, name, Guid(), {}, {{id, name, NodeKind::other, Flow::output, State::active}}};
    };
    const Snapshot before =
        computer({endpoint("{0.0.0.00000000}.{1}", "PulseAudio Output"), endpoint("{0.0.0.00000000}.{2}", "Monitor")});
    const Snapshot anew =
        computer({endpoint("{0.0.0.00000000}.{3}", "Monitor"), endpoint("{0.0.0.00000000}.{4}", "PulseAudio Output")});
    const Reference reference = referenceTo(before, "{0.0.0.00000000}.{1}");

    EXPECT_EQ(resolve(before, reference).kind, Kind::exact);
    const Resolution resolution = resolve(anew, reference);
    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(bestOf(resolution), "{0.0.0.00000000}.{4}");
    EXPECT_EQ(resolution.candidates[0].evidence, Evidence::name);
    EXPECT_EQ(resolution.candidates[0].reason, "same name");
}

TEST(ReferenceScenario, SaysWhatElseDiffersBesideAnEqualName)
{
    const Reference reference = referenceTo(computer({onBoard("old")}), "old.speakers");
    Device other = onBoard("new");
    other.instanceId = "PCI\\VEN_1102&DEV_0012&SUBSYS_11020033\\4&2&0&00E0";
    EXPECT_EQ(resolve(computer({other}), reference).candidates.at(0).reason, "same name, other device");

    other.instanceId = "ROOT\\MEDIA\\0000";
    other.driver = "oem9.inf:2";
    EXPECT_EQ(resolve(computer({other}), reference).candidates.at(0).reason, "same name, other driver");

    Device jack = onBoard("new");
    jack.endpoints = {{"new.speakers", "Speakers", NodeKind::spdif}};
    EXPECT_EQ(resolve(computer({jack}), reference).candidates.at(0).reason, "same name, other kind of jack");
}

TEST(ReferenceScenario, DistinguishesEqualJacksOfOneDeviceByWhatElseIsEqual)
{
    const auto interface4 = [](const std::string& id)
    {
        return Device{"USB\\VID_6986&PID_2A88\\STUDIO1",
                      {},
                      "Studio 4",
                      std::nullopt,
                      "oem4.inf:1",
                      {{id + "1", "Line 1/2", NodeKind::line, Flow::input, State::active, FormFactor::lineLevel},
                       {id + "3", "Line 3/4", NodeKind::line, Flow::input, State::unplugged, FormFactor::lineLevel}}};
    };
    const Resolution byName = resolve(computer({interface4("b")}), referenceTo(computer({interface4("a")}), "a3"));
    EXPECT_EQ(byName.kind, Kind::likely);
    EXPECT_EQ(bestOf(byName), "b3"); // although the other one is active

    const auto renamed = [&](const std::string& id)
    {
        Device device = interface4(id);
        device.endpoints[0].geometry = JackGeometry::front;
        device.endpoints[1].geometry = JackGeometry::rear;
        for (SimpleEndpoint& endpoint : device.endpoints)
            endpoint.description = "Line " + id;
        return device;
    };
    const Resolution byPlace = resolve(computer({renamed("b")}), referenceTo(computer({renamed("a")}), "a3"));
    EXPECT_EQ(bestOf(byPlace), "b3");
}

TEST(ReferenceScenario, TakesAnEndpointWhoseStateCannotBeReadForPresent)
{
    Device unknown = headset("USB\\VID_1111&PID_2222\\SN1", "b");
    unknown.endpoints[1].state = std::nullopt;
    const Resolution resolution =
        resolve(computer({unknown}), referenceTo(computer({headset("USB\\VID_1111&PID_2222\\SN1", "a")}), "a.in"));

    EXPECT_EQ(bestOf(resolution), "b.in");
    EXPECT_EQ(resolution.sentence(), "Microphone (USB Headset): same device, driver installed anew");
}

TEST(ReferenceScenario, HasNoBestAmongSeveralThatTakeTheirPlaceEquallyWell)
{
    const Device gone = headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a");
    const Resolution resolution = resolve(computer({notPresent(gone), headset("USB\\VID_1111&PID_2222\\6&1&0&5", "b"),
                                                    headset("USB\\VID_1111&PID_2222\\6&1&0&6", "c")}),
                                          referenceTo(computer({gone}), "a.in"));

    EXPECT_EQ(resolution.kind, Kind::exact);
    EXPECT_EQ(resolution.candidates.size(), 3u);
    EXPECT_FALSE(resolution.best().has_value());
    EXPECT_THAT(resolution.sentence(), HasSubstr("not present; in its place several endpoints fit equally well: "));
}

TEST(ReferenceScenario, TakesAPresentEndpointOfTheSameNameBeforeGhostsOfBetterEvidence)
{
    const Device old = headset("USB\\VID_1111&PID_2222\\6&1&0&1", "a");
    Device replaced = headset("USB\\VID_9999&PID_8888\\6&1&0&1", "d");
    const Resolution resolution =
        resolve(computer({notPresent(headset("USB\\VID_1111&PID_2222\\6&1&0&5", "b")),
                          notPresent(headset("USB\\VID_1111&PID_2222\\6&1&0&6", "c")), replaced}),
                referenceTo(computer({old}), "a.in"));

    EXPECT_EQ(resolution.kind, Kind::likely);
    EXPECT_EQ(resolution.candidates.size(), 3u);
    EXPECT_EQ(bestOf(resolution), "d.in");
    EXPECT_EQ(resolution.sentence(), "Microphone (USB Headset): same name, other device");
}
}
