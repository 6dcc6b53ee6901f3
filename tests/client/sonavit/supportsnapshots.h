/// @file
/// Snapshots by chance, for tests. The same seed gives the same snapshots everywhere.
#pragma once

#include "sonavit/snapshot.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace support
{
/// Makes snapshots from few ids and few values, so that ids occur twice, cards are empty, and two snapshots have much
/// in common.
class SnapshotGenerator
{
public:
    explicit SnapshotGenerator(std::uint32_t seed) : m_engine(seed) {}

    sonavit::Snapshot snapshot();
    /// @p before after a few changes; the cards that they do not touch are shared.
    sonavit::Snapshot changed(const sonavit::Snapshot& before);

    sonavit::Endpoint endpoint();
    sonavit::Card card();

    /// From 0 to @p count - 1.
    std::size_t choice(std::size_t count) { return m_engine() % count; }

private:
    using Content = sonavit::Snapshot::Content;

    void changeOnce(Content& content);
    void changeCards(std::vector<sonavit::Card>& cards);
    void changeEndpoints(std::vector<sonavit::Card>& cards);
    sonavit::Endpoint changed(const sonavit::Endpoint& endpoint);
    sonavit::EndpointId endpointId();
    sonavit::Hardware hardware();
    sonavit::Problem problem();
    void fill(sonavit::Endpoint::Content& content, sonavit::EndpointField field);

    std::mt19937 m_engine;
};
}
