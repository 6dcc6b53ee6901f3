/// @file
/// The members of contents by the names of their fields. Not a public header.
#pragma once

#include "sonavit/card.h"
#include "sonavit/change.h"
#include "sonavit/endpoint.h"

#include <array>

namespace sonavit
{
inline constexpr std::array<EndpointField, 17> allEndpointFields = {
    EndpointField::id,         EndpointField::description, EndpointField::interfaceName, EndpointField::flow,
    EndpointField::state,      EndpointField::roles,       EndpointField::jacks,         EndpointField::volume,
    EndpointField::format,     EndpointField::speakers,    EndpointField::waveId,        EndpointField::directSoundId,
    EndpointField::driverNode, EndpointField::container,   EndpointField::instancePath,  EndpointField::incarnation,
    EndpointField::problems};

inline constexpr std::array<CardField, 7> allCardFields = {
    CardField::instancePath, CardField::instanceId, CardField::parent,  CardField::container,
    CardField::bus,          CardField::title,      CardField::problems};

/// Calls @p visit with the pointer to the member that @p field names; does nothing for a number without a name.
template<class Visit>
void visitField(EndpointField field, const Visit& visit)
{
    using Content = Endpoint::Content;
    switch (field)
    {
    case EndpointField::id:
        return visit(&Content::id);
    case EndpointField::description:
        return visit(&Content::description);
    case EndpointField::interfaceName:
        return visit(&Content::interfaceName);
    case EndpointField::flow:
        return visit(&Content::flow);
    case EndpointField::state:
        return visit(&Content::state);
    case EndpointField::roles:
        return visit(&Content::roles);
    case EndpointField::jacks:
        return visit(&Content::jacks);
    case EndpointField::volume:
        return visit(&Content::volume);
    case EndpointField::format:
        return visit(&Content::format);
    case EndpointField::speakers:
        return visit(&Content::speakers);
    case EndpointField::waveId:
        return visit(&Content::waveId);
    case EndpointField::directSoundId:
        return visit(&Content::directSoundId);
    case EndpointField::driverNode:
        return visit(&Content::driverNode);
    case EndpointField::container:
        return visit(&Content::container);
    case EndpointField::instancePath:
        return visit(&Content::instancePath);
    case EndpointField::incarnation:
        return visit(&Content::incarnation);
    case EndpointField::problems:
        return visit(&Content::problems);
    }
}

template<class Visit>
void visitField(CardField field, const Visit& visit)
{
    using Content = Card::Content;
    switch (field)
    {
    case CardField::instancePath:
        return visit(&Content::instancePath);
    case CardField::instanceId:
        return visit(&Content::instanceId);
    case CardField::parent:
        return visit(&Content::parent);
    case CardField::container:
        return visit(&Content::container);
    case CardField::bus:
        return visit(&Content::bus);
    case CardField::title:
        return visit(&Content::title);
    case CardField::problems:
        return visit(&Content::problems);
    }
}

template<class Content, class Field>
bool hasSameField(const Content& left, const Content& right, Field field)
{
    bool isSame = true;
    visitField(field, [&](auto member) { isSame = left.*member == right.*member; });
    return isSame;
}

template<class Content, class Field>
void copyField(Content& to, const Content& from, Field field)
{
    visitField(field, [&](auto member) { to.*member = from.*member; });
}
}
