#include "sim_input_channels.h"

#include "sim_channel_writers.h"
#include "xpugixml.h"
#include "zlrapi_timebase.h"
#include "zlrapi_utils.h"

#include <pugixml.hpp>

#include <algorithm>
#include <ostream>

namespace zelvar_sim {
namespace {

std::string timebaseDocument(double sample_rate)
{
    pugi::xml_document document;
    zlr::Timebase timebase;
    timebase.m_type = zlr::Timebase::TYPE_SIMPLE;
    timebase.m_frequency = sample_rate;
    zlr::writeTimebase(document, timebase);
    return xpugi::to_xml(document, false);
}

} // namespace

zlr::DataFormat dataFormatOf(const InputChannelSetup& setup, SampleEncoding encoding)
{
    zlr::DataFormat format;
    switch (encoding) {
    case SampleEncoding::float64:
        format.m_sample_format = zlr::SAMPLE_FORMAT_DOUBLE;
        break;
    case SampleEncoding::float32:
        format.m_sample_format = zlr::SAMPLE_FORMAT_FLOAT;
        break;
    case SampleEncoding::int16:
        format.m_sample_format = zlr::SAMPLE_FORMAT_SINT16;
        break;
    case SampleEncoding::int32:
        format.m_sample_format = zlr::SAMPLE_FORMAT_SINT32;
        break;
    }
    format.m_sample_value_type = zlr::SAMPLE_VALUE_TYPE_SCALAR;
    format.m_sample_dimension = 1;
    format.m_sample_occurrence = setup.occurrence;
    return format;
}

zlr::ChannelDescriptor layoutOf(const InputChannelEntry& channel)
{
    // Plug-ins start their streams and ask for their windows as scaled data,
    // and scaled data are doubles: value times factor plus offset. The
    // host's channels are not scaled (factor 1, offset 0), so each value is
    // its recording's own, converted exactly, whatever type the recording
    // stores.
    zlr::ChannelDescriptor layout = recordLayout(
        channel.setup.id, zlr::SAMPLE_TYPE_DOUBLE,
        static_cast<std::uint32_t>(sampleBytes(SampleEncoding::float64) * 8), channel.setup.shape);
    layout.m_scale_factor = 1.0;
    layout.m_scale_offset = 0.0;
    return layout;
}

InputChannels::InputChannels(SimHost& host) : m_host(host)
{
    publishAllIds();
}

void InputChannels::add(const InputChannelSetup& setup, std::shared_ptr<const Recording> recording)
{
    remove(setup.id);
    const std::string path = zlr::channelPath(setup.id);
    ValueTree& tree = m_host.tree();
    tree.setXml(path, zlr::tree::DATA_FORMAT,
                writeDataFormatDocument(dataFormatOf(setup, recording->encoding()),
                                        setup.wrapped_data_format));
    tree.setXml(path, zlr::tree::TIMEBASE, timebaseDocument(setup.sample_rate));
    tree.setString(path, zlr::tree::LONG_NAME, setup.long_name);
    tree.setScalar(path, zlr::tree::SAMPLE_RATE, setup.sample_rate, "Hz");
    tree.setBoolean(path, zlr::tree::USABLE, setup.usable);

    const auto place = std::find_if(m_channels.begin(), m_channels.end(),
                                    [&](const InputChannelEntry& e) { return e.setup.id > setup.id; });
    m_channels.insert(place, InputChannelEntry{setup, std::move(recording)});
    publishAllIds();
}

bool InputChannels::remove(std::uint64_t id)
{
    const auto found = std::find_if(m_channels.begin(), m_channels.end(),
                                    [&](const InputChannelEntry& e) { return e.setup.id == id; });
    if (found == m_channels.end()) {
        return false;
    }
    m_channels.erase(found);
    const std::string path = zlr::channelPath(id);
    for (const char* key : {zlr::tree::DATA_FORMAT, zlr::tree::TIMEBASE, zlr::tree::LONG_NAME,
                            zlr::tree::SAMPLE_RATE, zlr::tree::USABLE}) {
        m_host.tree().remove(path, key);
    }
    publishAllIds();
    return true;
}

void InputChannels::setUsable(std::uint64_t id, bool usable)
{
    for (InputChannelEntry& entry : m_channels) {
        if (entry.setup.id == id) {
            entry.setup.usable = usable;
            m_host.tree().setBoolean(zlr::channelPath(id), zlr::tree::USABLE, usable);
        }
    }
}

void InputChannels::setOtherChannelIds(std::vector<std::uint64_t> ids)
{
    m_other_ids = std::move(ids);
    publishAllIds();
}

const InputChannelEntry* InputChannels::find(std::uint64_t id) const
{
    for (const InputChannelEntry& entry : m_channels) {
        if (entry.setup.id == id) {
            return &entry;
        }
    }
    return nullptr;
}

std::vector<std::uint64_t> InputChannels::ids() const
{
    std::vector<std::uint64_t> ids;
    for (const InputChannelEntry& entry : m_channels) {
        ids.push_back(entry.setup.id);
    }
    return ids;
}

void InputChannels::publishAllIds()
{
    std::vector<std::uint64_t> all = ids();
    all.insert(all.end(), m_other_ids.begin(), m_other_ids.end());
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    std::vector<zlr::ChannelStatusEntry> entries;
    for (std::uint64_t id : all) {
        zlr::ChannelStatusEntry entry;
        entry.m_channel_id = id;
        entries.push_back(entry);
    }
    m_host.tree().setXml(zlr::tree::CHANNELS, zlr::tree::ALL_IDS, writeChannels(entries));
}

void InputChannels::describe(std::ostream& out) const
{
    out << "input channels: " << m_channels.size() << "\n";
    for (const InputChannelEntry& entry : m_channels) {
        const Recording& recording = *entry.recording;
        out << "  " << entry.setup.id << " \"" << entry.setup.long_name << "\" "
            << entry.setup.sample_rate << " Hz, " << encodingName(recording.encoding()) << ", "
            << shapeName(entry.setup.shape) << ", " << recording.length() << " samples in "
            << recording.dataSpans().size() << " spans" << (entry.setup.usable ? "" : ", not usable")
            << "\n";
    }
}

zlr::DataFormat synchronousScalar()
{
    zlr::DataFormat format;
    format.m_sample_occurrence = zlr::SAMPLE_OCCURRENCE_SYNC;
    format.m_sample_format = zlr::SAMPLE_FORMAT_DOUBLE;
    format.m_sample_value_type = zlr::SAMPLE_VALUE_TYPE_SCALAR;
    format.m_sample_dimension = 1;
    return format;
}

} // namespace zelvar_sim
