#include "simulator/core/simulatedobject.h"
#include "simulator/objects/objects.h"

namespace sim
{
namespace
{
/// Parts in the platform's order.
class PartsListObject final : public ComObject<IPartsList>
{
public:
    PartsListObject(const std::shared_ptr<State>& state, std::string name, ListedParts listed,
                    std::vector<std::string> partIds)
        : ComObject(state, std::move(name)),
          m_listed(listed),
          m_partIds(std::move(partIds))
    {
    }

    /// A path is a list that ends where the signal begins.
    std::string finerName() const override
    {
        if (m_listed == ListedParts::path)
            return name() + " to " + m_partIds.front();
        return name() + (m_listed == ListedParts::incoming ? " incoming" : " outgoing");
    }

    HRESULT STDMETHODCALLTYPE GetCount(UINT* count) override
    {
        return call("IPartsList::GetCount", outputs(count),
                    [&]() -> HRESULT
                    {
                        *count = static_cast<UINT>(m_partIds.size());
                        return S_OK;
                    });
    }

    HRESULT STDMETHODCALLTYPE GetPart(UINT index, IPart** part) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (index >= m_partIds.size())
                return E_INVALIDARG;
            *part = makePart(state(), m_partIds[index]);
            return *part == nullptr ? AUDCLNT_E_DEVICE_INVALIDATED : S_OK;
        };
        return call("IPartsList::GetPart", outputs(part), answer, index);
    }

private:
    const ListedParts m_listed;
    const std::vector<std::string> m_partIds;
};
}

IPartsList* makePartsList(const std::shared_ptr<State>& state, std::string name, ListedParts listed,
                          std::vector<std::string> partIds)
{
    return new PartsListObject(state, std::move(name), listed, std::move(partIds));
}
}
