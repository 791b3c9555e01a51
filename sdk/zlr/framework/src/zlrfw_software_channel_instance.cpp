#include "zlrfw_software_channel_instance.h"

#include "zlrapi_data_request_xml.h"
#include "zlrapi_data_set_xml.h"
#include "zlrapi_process_window_xml.h"
#include "zlrapi_utils.h"
#include "zlrbase_assert.h"
#include "zlrbase_messages.h"
#include "zlrfw_block_description.h"
#include "zlrfw_callback_error.h"
#include "zlrfw_stream_reader.h"
#include "zlrfw_value_text.h"
#include "zlruni_logger.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <set>
#include <stdexcept>

namespace zlr::framework {
namespace {

constexpr double LARGEST_DOUBLE = std::numeric_limits<double>::max();
constexpr std::uint64_t ALL_TICKS = ~std::uint64_t{0};

// The key of an output channel within its instance; empty without one.
std::string channelKey(const PluginChannel& channel)
{
    const std::shared_ptr<IfChannelProperty> property = channel.getProperty(INSTANCE_KEY_PROPERTY);
    if (const auto text = std::dynamic_pointer_cast<StringProperty>(property)) {
        return text->getValue();
    }
    if (const auto raw = std::dynamic_pointer_cast<RawPropertyHolder>(property)) {
        return raw->getProperty().getStringValue();
    }
    return {};
}

std::string savedKey(const PluginChannelInfo& channel)
{
    for (const Property& property : channel.m_properties) {
        if (property.getName() == INSTANCE_KEY_PROPERTY) {
            return property.getStringValue();
        }
    }
    return {};
}

// Sends `text` as an XML value and holds what comes back.
std::uint64_t request(IfHost* host, std::uint32_t message_id, const std::string& text,
                      zlrbase_api_object_ptr<IfValue>& answer)
{
    IfValue* raw = nullptr;
    const std::uint64_t code =
        sendSyncXmlMessage(host, message_id, 0, text.c_str(), text.size() + 1, &raw);
    answer.adopt(raw);
    return code;
}

void sendAsyncXml(IfHost* host, std::uint32_t message_id, const std::string& text)
{
    zlrbase_api_object_ptr<IfXmlValue> value = createTypedValue<IfXmlValue>(host);
    if (!value) {
        return;
    }
    value->set(text.c_str());
    host->messageAsync(message_id, 0, value.get());
}

IfDataBlockList* asBlockList(const zlrbase_api_object_ptr<IfValue>& answer)
{
    if (!answer || answer->getType() != VALUE_TYPE_DATA_BLOCK_LIST) {
        return nullptr;
    }
    return static_cast<IfDataBlockList*>(answer.get());
}

// The span that a block list covers, from its first and last interval.
bool blockListSpan(IfDataBlockList* blocks, double& begin, double& end)
{
    zlrbase_api_object_ptr<IfXmlValue> description;
    description.adopt(blocks->getDescription());
    const std::optional<std::string_view> text = xmlValueView(description.get());
    DataBlockList list;
    if (!text || !readDataBlockListDescription(text->data(), text->size(), list) ||
        list.m_intervals.empty()) {
        return false;
    }
    begin = list.m_intervals.front().m_begin;
    end = list.m_intervals.back().m_end;
    return true;
}

template <typename Body>
void logUnhandled(const char* with_text, const char* without_text, Body&& body, bool rethrow)
{
    try {
        body();
    } catch (const CallbackError&) {
        // Meant for the host as it stands; whoever threw it has said why.
        throw;
    } catch (const std::exception& error) {
        ZLR_LOG(UniLogSeverityLevel::Error, with_text << error.what());
        if (rethrow) {
            throw CallbackError(RESULT_EXCEPTION);
        }
    } catch (...) {
        ZLR_LOG(UniLogSeverityLevel::Error, without_text);
        if (rethrow) {
            throw CallbackError(RESULT_EXCEPTION);
        }
    }
}

} // namespace

double ticksToSeconds(std::uint64_t ticks, double frequency)
{
    double seconds = static_cast<double>(ticks) / frequency;
    const double back = seconds * frequency;
    // Out of the range of a 64-bit count (NaN included) the check has nothing to say.
    if (back >= 0.0 && back < 18446744073709551616.0 && static_cast<std::uint64_t>(back) < ticks) {
        seconds = std::nextafter(seconds, LARGEST_DOUBLE);
    }
    return seconds;
}

// ------------------------------------------------------------ set-up and channels

SoftwareChannelInstance::~SoftwareChannelInstance()
{
    if (!m_plugin_channels) {
        return;
    }
    if (m_task) {
        m_plugin_channels->removeTask(m_task);
    }
    for (const std::shared_ptr<PluginChannel>& channel : m_output_channels) {
        m_plugin_channels->removeChannel(channel);
    }
}

void SoftwareChannelInstance::setup(const std::shared_ptr<PluginChannels>& plugin_channels)
{
    m_plugin_channels = plugin_channels;
    m_task = m_plugin_channels->addTask(this, 0);
}

void SoftwareChannelInstance::initialise(IfHost* host)
{
    m_host = host;
    logUnhandled(
        "Unhandled exception during 'initInstance': ", "Unhandled exception during 'initInstance'",
        [&] {
            const std::shared_ptr<PluginChannel> root = addOutputChannel("root", nullptr);
            if (root) {
                root->setDeletable(true);
                root->setDataFormat(SAMPLE_OCCURRENCE_NEVER, SAMPLE_FORMAT_NONE, 0);
            }
            m_data_request_type = 1;
            m_stream_interval = 0.01;
            initInstance(host);
        },
        false);
}

std::shared_ptr<PluginChannel>
SoftwareChannelInstance::addOutputChannel(const std::string& key,
                                          const std::shared_ptr<PluginChannel>& parent)
{
    if (findOutputChannel(key)) {
        return nullptr;
    }
    const std::shared_ptr<PluginChannel> channel = m_plugin_channels->addChannel();
    const auto key_property = std::make_shared<EditableStringProperty>(key);
    key_property->setVisibility("HIDDEN");
    channel->addProperty(INSTANCE_KEY_PROPERTY, key_property);
    channel->addProperty("Used", std::make_shared<BooleanProperty>(true));
    m_task->addOutputChannel(channel);
    channel->setLocalParent(parent ? parent : getRootChannel());
    m_output_channels.push_back(channel);
    return channel;
}

std::shared_ptr<PluginChannel> SoftwareChannelInstance::findOutputChannel(const std::string& key) const
{
    for (const std::shared_ptr<PluginChannel>& channel : m_output_channels) {
        if (channel && channelKey(*channel) == key) {
            return channel;
        }
    }
    return nullptr;
}

void SoftwareChannelInstance::removeOutputChannel(const std::shared_ptr<PluginChannel>& channel_ref)
{
    // A copy: the argument may be an element of m_output_channels itself.
    const std::shared_ptr<PluginChannel> channel = channel_ref;
    m_task->removeOutputChannel(channel);
    m_plugin_channels->removeChannel(channel);
    m_output_channels.erase(
        std::remove(m_output_channels.begin(), m_output_channels.end(), channel),
        m_output_channels.end());
}

std::shared_ptr<PluginChannel> SoftwareChannelInstance::getRootChannel() const
{
    return m_output_channels.empty() ? nullptr : m_output_channels.front();
}

// ------------------------------------------------------------- inputs and validity

void SoftwareChannelInstance::rebuildInputChannels()
{
    m_input_channels.clear();
    m_task->clearInputChannels();

    for (const std::uint64_t id : getReferencedChannelIds()) {
        auto proxy = std::make_shared<InputChannel>(m_host, id);
        proxy->updateDataFormat();
        m_input_channels.push_back(proxy);
        // A channel without samples, or of a format not known yet, is not
        // requested from the host.
        const std::uint32_t occurrence = proxy->getDataFormat().m_sample_occurrence;
        if (occurrence != SAMPLE_OCCURRENCE_NEVER && occurrence != SAMPLE_OCCURRENCE_UNKNOWN) {
            m_task->addInputChannel(id);
        }
    }
}

std::set<std::uint64_t> SoftwareChannelInstance::getReferencedChannelIds() const
{
    std::set<std::uint64_t> channel_ids;
    for (const std::shared_ptr<PluginChannel>& channel : m_output_channels) {
        if (!channel) {
            continue;
        }
        for (const PluginChannel::NamedProperty& entry : channel->getProperties()) {
            if (const auto single =
                    std::dynamic_pointer_cast<EditableChannelIDProperty>(entry.second)) {
                if (const std::optional<std::uint64_t> id = single->getValue()) {
                    channel_ids.insert(*id);
                }
            } else if (const auto list = std::dynamic_pointer_cast<EditableChannelIDListProperty>(
                           entry.second)) {
                for (const std::uint64_t id : list->getValue()) {
                    channel_ids.insert(id);
                }
            }
        }
    }
    return channel_ids;
}

bool SoftwareChannelInstance::validate()
{
    const bool ok = update();

    bool inputs_ok = true;
    for (const std::shared_ptr<InputChannel>& proxy : m_input_channels) {
        const std::uint32_t occurrence = proxy->getDataFormat().m_sample_occurrence;
        if (occurrence != SAMPLE_OCCURRENCE_NEVER && occurrence != SAMPLE_OCCURRENCE_UNKNOWN) {
            inputs_ok = inputs_ok && proxy->isUsable();
        }
    }

    bool any_used = false;
    for (const std::shared_ptr<PluginChannel>& channel : m_output_channels) {
        const std::shared_ptr<BooleanProperty> used_property = channel->getUsedProperty();
        const bool used = used_property ? used_property->getValue() : true;
        any_used = any_used || used;
        const std::shared_ptr<PluginChannel> parent = channel->getLocalParent();
        const std::shared_ptr<BooleanProperty> parent_used =
            parent ? parent->getUsedProperty() : nullptr;
        if (parent_used && used_property) {
            used_property->setValue(parent_used->getValue() && used);
        }
    }

    for (const std::shared_ptr<PluginChannel>& channel : m_output_channels) {
        channel->setValid(ok && inputs_ok);
    }
    m_task->setValid(ok && inputs_ok && any_used);
    return ok;
}

void SoftwareChannelInstance::applyChannelIdMap(const ChannelIdMap& channel_map)
{
    for (const std::shared_ptr<PluginChannel>& channel : m_output_channels) {
        for (const PluginChannel::NamedProperty& entry : channel->getProperties()) {
            if (const auto single =
                    std::dynamic_pointer_cast<EditableChannelIDProperty>(entry.second)) {
                const std::optional<std::uint64_t> id = single->getValue();
                if (id && channel_map.count(*id)) {
                    single->setValue(channel_map.at(*id));
                }
            } else if (const auto list = std::dynamic_pointer_cast<EditableChannelIDListProperty>(
                           entry.second)) {
                std::vector<std::uint64_t> ids = list->getValue();
                for (std::uint64_t& id : ids) {
                    const auto mapped = channel_map.find(id);
                    if (mapped != channel_map.end()) {
                        id = mapped->second;
                    }
                }
                list->setValue(ids);
            }
        }
    }
    rebuildInputChannels();
}

std::vector<std::uint32_t>
SoftwareChannelInstance::getChannelsToRemove(const std::vector<std::uint32_t>& ids)
{
    std::vector<std::uint32_t> all;
    if (ids.empty() || !getRootChannel()) {
        return all;
    }
    for (const std::shared_ptr<PluginChannel>& channel : m_output_channels) {
        all.push_back(channel->getLocalId());
    }
    return all;
}

// ------------------------------------------------------------------------- hooks

void SoftwareChannelInstance::workerHook() {}
void SoftwareChannelInstance::initInstance(IfHost*) {}
void SoftwareChannelInstance::onChannelIdsMapped(const ChannelIdMap&) {}
void SoftwareChannelInstance::create(const std::vector<InputChannelFormat>&) {}
void SoftwareChannelInstance::restoreHookFirst(const std::shared_ptr<PluginChannel>&) {}
void SoftwareChannelInstance::restoreHookSecond(const std::shared_ptr<PluginChannel>&) {}
void SoftwareChannelInstance::onConfigurationApplied() {}
void SoftwareChannelInstance::initTimebases(IfHost*) {}
void SoftwareChannelInstance::prepareProcessing(IfHost*) {}
void SoftwareChannelInstance::stopProcessing(IfHost*) {}
void SoftwareChannelInstance::onEventFirst() {}
void SoftwareChannelInstance::onEventSecond() {}

bool SoftwareChannelInstance::configure(const std::vector<Property>&)
{
    return true;
}

InitResult SoftwareChannelInstance::init(const InitParams& params)
{
    InitResult result{false, 0, -1};
    try {
        if (configure(params.m_properties)) {
            create(params.m_candidates);
            result = InitResult{true, 2, -1};
        }
    } catch (const std::exception& error) {
        ZLR_LOG(UniLogSeverityLevel::Error, "Unhandled exception during 'init': " << error.what());
        result = InitResult{false, 0, -1};
    } catch (...) {
        ZLR_LOG(UniLogSeverityLevel::Error, "Unhandled exception duriong 'init'");
        result = InitResult{false, 0, -1};
    }
    return result;
}

void SoftwareChannelInstance::onChannelConfigChanged(IfHost*, std::uint64_t)
{
    rebuildInputChannels();
    validate();
    m_plugin_channels->commitChanges(false);
}

// -------------------------------------------------------------------- task steps

void SoftwareChannelInstance::onInitTimebases(IfHost* host, std::uint64_t)
{
    logUnhandled(
        "Unhandled exception during 'initTimebases': ",
        "Unhandled exception during 'initTimebases'",
        [&] {
            for (const std::shared_ptr<InputChannel>& proxy : m_input_channels) {
                proxy->updateTimebase();
            }
            initTimebases(host);
            m_plugin_channels->commitChanges(false);
        },
        false);
}

void SoftwareChannelInstance::onPrepareProcessing(IfHost* host, std::uint64_t)
{
    logUnhandled(
        "Unhandled exception during 'prepareProcessing': ",
        "Unhandled exception during 'prepareProcessing'",
        [&] {
            if (!m_input_channels.empty()) {
                registerDataSet(host);
            }
            if (m_stream_descriptors && m_data_request_type == 1) {
                StreamRequestTelegram stream;
                stream.m_data_set_key = m_dataset_key;
                stream.m_block_duration = m_stream_interval;
                stream.m_has_block_duration = true;
                stream.m_ignore_regions = true;
                stream.m_has_ignore_regions = true;
                stream.m_stream_type = STREAM_TYPE_SCALED;
                sendAsyncXml(host, HOST_DATA_STREAM_START, stream.generate());
            }
            prepareProcessing(host);
        },
        true);
}

void SoftwareChannelInstance::registerDataSet(IfHost* host)
{
    RegisterDataSetTelegram data_set;
    data_set.m_data_set_key = m_task->getId();
    for (const std::shared_ptr<InputChannel>& proxy : m_input_channels) {
        data_set.m_channels.push_back(proxy->getChannelId());
    }
    data_set.m_type = DATA_SET_TYPE_RELAXED;
    data_set.m_mode = DATA_SET_MODE_NORMAL;
    data_set.m_policy = STREAM_POLICY_PUSH;

    zlrbase_api_object_ptr<IfValue> answer;
    request(host, HOST_DATA_SET_REGISTER, data_set.generate(), answer);
    const std::optional<std::string> text = xmlValueText(answer.get());
    StreamDescriptors descriptors;
    if (text && descriptors.parse(text->c_str(), text->size())) {
        m_stream_descriptors = descriptors.m_stream_descriptors;
        m_dataset_key = descriptors.m_data_set_key;
    }
}

void SoftwareChannelInstance::onProcess(IfHost* host, std::uint64_t, IfXmlValue* start)
{
    logUnhandled(
        "Unhandled exception during 'process': ", "Unhandled exception during 'process'",
        [&] {
            ProcessWindowTelegram window;
            if (start) {
                const std::optional<std::string_view> text = xmlValueView(start);
                if (text) {
                    window.parse(text->data(), text->size());
                }
            }
            const bool timed = window.m_start.isValid() && window.m_end.isValid();

            ProcessContext context;
            context.master_timestamp = getMasterTimestamp(host);

            if (m_stream_descriptors && timed) {
                processWindow(host, context,
                              static_cast<double>(window.m_start.ticks) / window.m_start.frequency,
                              static_cast<double>(window.m_end.ticks) / window.m_end.frequency);
            } else if (m_stream_descriptors && m_data_request_type == 1) {
                processStream(host, context);
            } else if (!m_stream_descriptors && timed) {
                context.window_start = ticksToSeconds(window.m_start.ticks, window.m_start.frequency);
                context.window_end = ticksToSeconds(window.m_end.ticks, window.m_end.frequency);
                process(context, host);
            }
        },
        true);
}

void SoftwareChannelInstance::processWindow(IfHost* host, ProcessContext& context, double start,
                                            double end)
{
    DataRegionsRequestTelegram regions_request;
    regions_request.m_data_set_key = m_dataset_key;
    regions_request.m_start = start;
    regions_request.m_end = end;
    regions_request.m_has_window = true;
    zlrbase_api_object_ptr<IfValue> regions_answer;
    request(host, HOST_DATA_REGIONS_REQUEST, regions_request.generate(), regions_answer);
    DataRegions regions;
    if (const std::optional<std::string_view> text = xmlValueView(regions_answer.get())) {
        if (!readDataRegionsDescription(text->data(), text->size(), regions)) {
            regions.m_regions.clear();
        }
    }

    zlrbase_api_object_ptr<IfValue> answer;
    const std::uint64_t code = request(
        host, HOST_DATA_REQUEST, DataTransferRequestTelegram(m_dataset_key, start, end).generate(),
        answer);
    IfDataBlockList* blocks = asBlockList(answer);
    if (code != RESULT_OK || !blocks || blocks->getBlockCount() <= 0) {
        return;
    }
    if (!blockListSpan(blocks, context.window_start, context.window_end)) {
        return;
    }
    context.channel_iterators =
        createStreamIterators(*m_stream_descriptors, blocks, start, end, regions.m_regions);
    process(context, host);
}

void SoftwareChannelInstance::processStream(IfHost* host, ProcessContext& context)
{
    const double master = static_cast<double>(context.master_timestamp.ticks) /
                          context.master_timestamp.frequency;
    double reached = 0.0;
    bool failed = false;
    while (master > reached) {
        zlrbase_api_object_ptr<IfValue> answer;
        const std::uint64_t code = request(
            host, HOST_DATA_REQUEST, DataTransferRequestTelegram(m_dataset_key).generate(), answer);
        if (code != RESULT_OK) {
            throw CallbackError(RESULT_FAILED);
        }
        IfDataBlockList* blocks = asBlockList(answer);
        if (!blocks || blocks->getBlockCount() <= 0) {
            break;
        }
        if (!blockListSpan(blocks, context.window_start, context.window_end)) {
            break;
        }
        context.channel_iterators = createStreamIterators(*m_stream_descriptors, blocks);
        // One failed round is told and the stream goes on; the host hears
        // of it when the loop has ended.
        try {
            process(context, host);
        } catch (const std::exception& error) {
            ZLR_LOG(UniLogSeverityLevel::Error,
                    "Unhandled exception during 'process': " << error.what());
            failed = true;
        } catch (...) {
            ZLR_LOG(UniLogSeverityLevel::Error, "Unhandled exception during 'process'");
            failed = true;
        }
        reached = context.window_end;
    }
    if (failed) {
        throw CallbackError(RESULT_EXCEPTION);
    }
}

std::map<std::uint64_t, StreamIterator>
SoftwareChannelInstance::createStreamIterators(const std::vector<StreamDescriptor>& descriptors,
                                               IfDataBlockList* blocks, double begin, double end,
                                               const std::vector<DataRegion>& regions) const
{
    StreamReader reader;
    const std::int32_t count = blocks->getBlockCount();
    for (std::int32_t i = 0; i < count; ++i) {
        zlrbase_api_object_ptr<IfDataBlock> block;
        block.adopt(blocks->getBlock(i));
        if (!block) {
            continue;
        }
        zlrbase_api_object_ptr<IfXmlValue> description;
        description.adopt(block->getDescription());
        const std::optional<std::string_view> text = xmlValueView(description.get());
        DataBlock layout;
        if (text && readDataBlockDescription(text->data(), text->size(), layout) &&
            !layout.m_channels.empty()) {
            // The bytes belong to the list, which outlives the block object.
            reader.addDataBlock(std::move(layout), block->getData());
        }
    }
    for (const DataRegion& region : regions) {
        reader.addDataRegion(region);
    }

    const bool ranged = begin >= 0.0 && end < LARGEST_DOUBLE;
    std::map<std::uint64_t, StreamIterator> iterators;
    for (const StreamDescriptor& stream : descriptors) {
        reader.setStreamDescriptor(stream);
        for (const ChannelDescriptor& channel : stream.m_channels) {
            TickRange range{0, ALL_TICKS};
            if (ranged) {
                std::shared_ptr<InputChannel> proxy;
                for (const std::shared_ptr<InputChannel>& candidate : m_input_channels) {
                    if (candidate->getChannelId() == channel.m_channel_id) {
                        proxy = candidate;
                        break;
                    }
                }
                if (!proxy) {
                    throw std::out_of_range("no proxy for input channel");
                }
                const double rate = proxy->getTimebase().m_frequency;
                range = {timeToSampleIndex(begin, rate), timeToSampleIndex(end, rate)};
            }
            iterators.insert_or_assign(channel.m_channel_id,
                                       reader.createChannelIterator(channel.m_channel_id, range));
        }
    }
    return iterators;
}

std::map<std::uint64_t, StreamIterator>
SoftwareChannelInstance::createStreamIterators(const std::vector<StreamDescriptor>& descriptors,
                                               IfDataBlockList* blocks) const
{
    std::vector<DataRegion> everything;
    for (const StreamDescriptor& stream : descriptors) {
        for (const ChannelDescriptor& channel : stream.m_channels) {
            everything.push_back({channel.m_channel_id, 0, ALL_TICKS});
        }
    }
    return createStreamIterators(descriptors, blocks, 0.0, LARGEST_DOUBLE, everything);
}

void SoftwareChannelInstance::onStopProcessing(IfHost* host, std::uint64_t)
{
    logUnhandled(
        "Unhandled exception during 'stopProcessing': ",
        "Unhandled exception during 'stopProcessing'",
        [&] {
            if (m_stream_descriptors && m_data_request_type == 1) {
                StreamStopTelegram stop;
                stop.m_data_set_key = m_dataset_key;
                sendAsyncXml(host, HOST_DATA_STREAM_STOP, stop.generate());
            }
            if (m_stream_descriptors) {
                zlrbase_api_object_ptr<IfUInt64Value> key = createTypedValue<IfUInt64Value>(host);
                if (key) {
                    key->set(m_dataset_key);
                }
                host->messageSync(HOST_DATA_SET_UNREGISTER, 0, key.get(), nullptr);
                m_stream_descriptors.reset();
            }
            stopProcessing(host);
        },
        true);
}

// ---------------------------------------------------------------------- restore

void SoftwareChannelInstance::restoreChannels(const std::vector<PluginChannelInfo>& channels,
                                              LocalIdMap& channel_map)
{
    for (const PluginChannelInfo& saved : channels) {
        const std::string key = savedKey(saved);
        if (const std::shared_ptr<PluginChannel> existing = findOutputChannel(key)) {
            channel_map[saved.m_local_id] = existing->getLocalId();
            continue;
        }
        const auto parent_id = channel_map.find(saved.m_local_parent_id);
        if (parent_id == channel_map.end()) {
            reportAssertion("Unable to determine Parent", ZLR_SOURCE_PATH, __LINE__);
            continue;
        }
        std::shared_ptr<PluginChannel> parent;
        for (const std::shared_ptr<PluginChannel>& candidate : m_output_channels) {
            if (candidate->getLocalId() == parent_id->second) {
                parent = candidate;
                break;
            }
        }
        const std::shared_ptr<PluginChannel> channel = addOutputChannel(key, parent);
        if (!channel) {
            continue;
        }
        channel->setDefaultName(saved.m_default_name);
        channel->setDataFormat(saved.m_dataformat.m_sample_occurrence,
                               saved.m_dataformat.m_sample_format,
                               saved.m_dataformat.m_sample_dimension);
        channel_map[saved.m_local_id] = channel->getLocalId();
    }
}

void SoftwareChannelInstance::restoreProperties(const std::vector<PluginChannelInfo>& channels,
                                                const LocalIdMap& channel_map)
{
    for (const PluginChannelInfo& saved : channels) {
        const auto mapped = channel_map.find(saved.m_local_id);
        if (mapped == channel_map.end()) {
            throw std::out_of_range("invalid map<K, T> key");
        }
        std::shared_ptr<PluginChannel> channel;
        for (const std::shared_ptr<PluginChannel>& candidate : m_output_channels) {
            if (candidate->getLocalId() == mapped->second) {
                channel = candidate;
                break;
            }
        }
        if (!channel) {
            continue;
        }
        // Settings the running code does not know survive a save and load.
        for (const Property& property : saved.m_properties) {
            if (!channel->getProperty(property.getName())) {
                channel->addProperty(property.getName(),
                                     std::make_shared<RawPropertyHolder>(property));
            }
        }
        channel->resolveRawProperties();
        restoreHookFirst(channel);
        restoreHookSecond(channel);

        for (const Property& property : saved.m_properties) {
            const std::shared_ptr<IfChannelProperty> destination_property =
                channel->getProperty(property.getName());
            ZLR_ASSERT_MSG(destination_property, "Unable to configure property %s",
                           property.getName().c_str());
            if (!destination_property) {
                continue;
            }
            bool updated = false;
            try {
                updated = destination_property->update(property);
            } catch (const std::exception&) {
            }
            if (!updated) {
                reportAssertion("destination_property->update(property)", ZLR_SOURCE_PATH,
                                __LINE__);
            }
        }
    }
}

} // namespace zlr::framework
