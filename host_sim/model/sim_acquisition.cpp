#include "sim_acquisition.h"

#include <ostream>

namespace zelvar_sim {

Acquisition::Acquisition(SimHost& host, AcquisitionOptions options)
    : m_clock(std::make_shared<MasterClock>(host, options.clock_frequency)),
      m_inputs(std::make_shared<InputChannels>(host)),
      m_tasks(std::make_shared<TaskRegistry>(host, m_inputs)),
      m_data_sets(std::make_shared<DataSets>(host, m_inputs, m_clock)),
      m_output(std::make_shared<OutputCapture>(host)),
      m_driver(host, *m_tasks, *m_inputs, *m_data_sets, *m_clock)
{
    host.addService(m_inputs);
    host.addService(m_tasks);
    host.addService(m_data_sets);
    host.addService(m_output);
}

void Acquisition::addInputChannel(const InputChannelSetup& setup,
                                  std::shared_ptr<const Recording> recording)
{
    m_inputs->add(setup, std::move(recording));
}

void Acquisition::setOutputCheck(TaskRegistry::OutputCheck output_exists)
{
    m_tasks->setOutputCheck(std::move(output_exists));
}

RunReport Acquisition::run(const PluginSender& send, const RunOptions& options)
{
    return m_driver.run(send, options);
}

RunReport Acquisition::run(PluginSession& session, const RunOptions& options)
{
    return m_driver.run(
        [&session](std::uint32_t id, std::uint64_t key, zlr::IfValue* value) {
            return session.send(id, key, value);
        },
        options);
}

const std::vector<CapturedBlock>& Acquisition::outputBlocks(std::uint32_t local_id) const
{
    return m_output->blocks(local_id);
}

std::vector<CapturedBlock> Acquisition::takeOutputBlocks(std::uint32_t local_id)
{
    return m_output->takeBlocks(local_id);
}

std::vector<double> Acquisition::outputValues(std::uint32_t local_id) const
{
    return m_output->values(local_id);
}

void Acquisition::describe(std::ostream& out) const
{
    const zlr::Timestamp now = m_clock->now();
    out << "master clock: tick " << now.ticks << " at " << now.frequency << " Hz\n";
    m_inputs->describe(out);
    m_tasks->describe(out);
    m_data_sets->describe(out);
    m_output->describe(out);
}

} // namespace zelvar_sim
