#include "client/references/recognition.h"

#include "sonavit/ids.h"

#include <string_view>

namespace sonavit::references
{
namespace
{
using Evidence = Candidate::Evidence;

/// For ids and names; the case of A to Z does not count.
bool isSameText(std::string_view kept, std::string_view found) noexcept
{
    return !kept.empty() && compareIds(kept, found) == 0;
}

bool isOtherText(std::string_view kept, std::string_view found) noexcept
{
    return !kept.empty() && !found.empty() && compareIds(kept, found) != 0;
}

/// For bytes.
bool isSame(const std::string& kept, const std::string& found) noexcept
{
    return !kept.empty() && kept == found;
}

bool isOther(const std::string& kept, const std::string& found) noexcept
{
    return !kept.empty() && !found.empty() && kept != found;
}

bool isSameModel(const Traits& kept, const Traits& found) noexcept
{
    return isSameText(kept.vendor, found.vendor) && isSameText(kept.product, found.product);
}

bool isOtherModel(const Traits& kept, const Traits& found) noexcept
{
    return isOtherText(kept.vendor, found.vendor) || isOtherText(kept.product, found.product);
}

/// Jacks are known by their type. It may be unknown of an endpoint that is disabled or not present: then they are known
/// by the form factor. Endpoints of which neither is known have the same jack.
bool isSameJack(const Traits& kept, const Traits& found) noexcept
{
    if (!kept.jackType.empty() && !found.jackType.empty())
        return kept.jackType == found.jackType;
    if (!kept.formFactor.empty() || !found.formFactor.empty())
        return kept.formFactor == found.formFactor;
    return kept.jackType.empty() && found.jackType.empty();
}

bool isSameName(const Traits& kept, const Traits& found) noexcept
{
    const bool isInterfaceEqual =
        kept.interfaceName.empty() ? found.interfaceName.empty() : isSameText(kept.interfaceName, found.interfaceName);
    return isSameText(kept.description, found.description) && isInterfaceEqual;
}

std::optional<Evidence> evidenceOf(const Traits& kept, const Traits& found) noexcept
{
    if (kept.flow != found.flow)
        return std::nullopt;
    if (isSameText(kept.endpointId, found.endpointId))
        return Evidence::endpointId;
    const bool isModel = isSameModel(kept, found);
    if (isModel && isOtherText(kept.serial, found.serial))
        return std::nullopt;
    const bool isJack = isSameJack(kept, found);
    if (isJack && isModel && isSameText(kept.serial, found.serial))
        return Evidence::serialNumber;
    if (isJack && isSame(kept.container, found.container))
        return Evidence::container;
    if (isJack && isSameText(kept.instanceId, found.instanceId))
        return Evidence::instanceId;
    if (isJack && isModel)
        return Evidence::vendorAndProduct;
    return isSameName(kept, found) ? std::optional<Evidence>(Evidence::name) : std::nullopt;
}

bool isOnBus(const Traits& traits, std::string_view bus) noexcept
{
    return compareIds(std::string_view(traits.instanceId).substr(0, bus.size()), bus) == 0;
}

/// What a person calls a device that is joined by Bluetooth.
std::string wirelessWords(const Traits& found)
{
    const auto is = [&found](FormFactor formFactor) { return found.formFactor == formFactorBytes(formFactor); };
    return is(FormFactor::headphones) ? "headphones" : is(FormFactor::headset) ? "headset" : "Bluetooth device";
}

/// ", driver installed anew": for a device that is where it was and has a new endpoint.
std::string driverWords(const Traits& kept, const Traits& found)
{
    if (isOther(kept.driver, found.driver))
        return ", other driver";
    return isSameText(kept.description, found.description) ? ", driver installed anew" : ", new endpoint";
}

/// Where the device is, compared with where it was.
std::string placeWords(const Traits& kept, const Traits& found)
{
    if (isSameText(kept.instanceId, found.instanceId))
        return driverWords(kept, found);
    if (isOnBus(kept, "USB\\") && isOnBus(found, "USB\\"))
        return " in another USB port";
    if (isOnBus(kept, "PCI\\") && isOnBus(found, "PCI\\"))
        return " in another PCI slot";
    return isOtherText(kept.instanceId, found.instanceId) ? " in another place" : "";
}

std::string deviceWords(const Traits& kept, const Traits& found)
{
    if (isOnBus(kept, "BTH") && isOnBus(found, "BTH"))
        return "same " + wirelessWords(found) + ", paired anew";
    return "same device" + placeWords(kept, found);
}

std::string nameWords(const Traits& kept, const Traits& found)
{
    if (isOtherModel(kept, found))
        return "same name, other device";
    if (isOther(kept.driver, found.driver))
        return "same name, other driver";
    return isSameModel(kept, found) ? "same name, other kind of jack" : "same name";
}

std::string reasonOf(Evidence evidence, const Traits& kept, const Traits& found)
{
    const std::string renamed = isOtherText(kept.description, found.description) ? ", other name" : "";
    switch (evidence)
    {
    case Evidence::endpointId:
        return "same endpoint" + renamed;
    case Evidence::serialNumber:
    case Evidence::container:
    case Evidence::instanceId:
        return deviceWords(kept, found) + renamed;
    case Evidence::vendorAndProduct:
        return "same model" + placeWords(kept, found) + renamed;
    case Evidence::name:
        break;
    }
    return nameWords(kept, found);
}
}

std::optional<Recognition> recognise(const Traits& kept, const Traits& found)
{
    const std::optional<Evidence> evidence = evidenceOf(kept, found);
    if (!evidence)
        return std::nullopt;
    Recognition recognition;
    recognition.evidence = *evidence;
    recognition.agreement = {
        isSame(kept.container, found.container),   isSameText(kept.instanceId, found.instanceId),
        isSameText(kept.function, found.function), isSameText(kept.description, found.description),
        isSame(kept.jackPlace, found.jackPlace),   isSameText(kept.interfaceName, found.interfaceName)};
    recognition.reason = reasonOf(*evidence, kept, found);
    return recognition;
}
}
