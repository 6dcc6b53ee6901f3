/// @file
/// The sound cards of this computer, for programs of today: all public headers of the client layer.
///
///     sonavit::System audio;
///     for (const sonavit::Card& card : audio.snapshot().cards())
///         for (const sonavit::Endpoint& endpoint : card.endpoints())
///             std::cout << card.title() << " / " << endpoint.title() << "\n";
///
/// A System observes the computer's sound hardware and changes it. What it reports are plain values: they hold no
/// object of the platform, can be copied, compared, printed and used on any thread, and stay as they are. To look into
/// them calls no platform and waits for nothing.
#pragma once

#include "sonavit/capture.h"
#include "sonavit/card.h"
#include "sonavit/change.h"
#include "sonavit/control.h"
#include "sonavit/diagnosis.h"
#include "sonavit/endpoint.h"
#include "sonavit/format.h"
#include "sonavit/formathold.h"
#include "sonavit/graph.h"
#include "sonavit/ids.h"
#include "sonavit/jack.h"
#include "sonavit/levelchange.h"
#include "sonavit/nodekind.h"
#include "sonavit/problem.h"
#include "sonavit/reference.h"
#include "sonavit/result.h"
#include "sonavit/settings.h"
#include "sonavit/snapshot.h"
#include "sonavit/system.h"
#include "sonavit/volume.h"
