#include "sim_host_bench.h"

namespace zelvar_sim {

HostBench::HostBench(const std::string& name, const std::string& version,
                     std::unique_ptr<SimHost> host)
    : m_host(std::move(host))
{
    m_host->setIdentity(name, version);
    m_model = std::make_unique<HostModel>(*m_host);
    m_acquisition = std::make_unique<Acquisition>(*m_host);
    const PluginChannelTree& tree = m_model->channels();
    m_acquisition->setOutputCheck([&tree](std::uint64_t local_id) {
        return local_id <= 0xFFFFFFFFu && tree.channel(static_cast<std::uint32_t>(local_id));
    });
}

void HostBench::addInput(const InputChannelSetup& setup, std::shared_ptr<const Recording> recording)
{
    m_acquisition->addInputChannel(setup, std::move(recording));
    m_candidates.push_back({static_cast<std::uint32_t>(setup.id), synchronousScalar()});
}

CreateOutcome HostBench::createChannel()
{
    return m_model->createSoftwareChannel(m_candidates);
}

std::vector<HostChannel> HostBench::outputsOf(std::uint32_t root) const
{
    std::vector<HostChannel> outputs;
    for (const HostChannel& channel : m_model->channels().channels()) {
        if (channel.parent == root) {
            outputs.push_back(channel);
        }
    }
    return outputs;
}

} // namespace zelvar_sim
