#include "sim_data_sets.h"

#include "sim_data_set_readers.h"
#include "sim_data_set_writers.h"
#include "sim_double_recording.h"
#include "sim_record_layout.h"
#include "zlrbase_messages.h"
#include "zlrfw_sample_position.h"

#include <algorithm>
#include <cmath>
#include <ostream>

namespace zelvar_sim {
namespace {

// Where a block's bytes start within the bytes of its list.
constexpr std::size_t BLOCK_ALIGNMENT = 16;

// The first sample at or after a time; times before the start give sample 0.
std::uint64_t sampleAt(double seconds, double rate)
{
    if (!(seconds > 0.0)) {
        return 0;
    }
    return zlr::framework::timeToSampleIndex(seconds, rate);
}

SampleSpan samplesOf(const InputChannelEntry& channel, double begin, double end)
{
    return {sampleAt(begin, channel.setup.sample_rate), sampleAt(end, channel.setup.sample_rate)};
}

std::vector<SampleSpan> gapsWithin(const std::vector<SampleSpan>& data, SampleSpan window)
{
    std::vector<SampleSpan> gaps;
    std::uint64_t cursor = window.begin;
    for (const SampleSpan& span : clipSpans(data, window)) {
        if (span.begin > cursor) {
            gaps.push_back({cursor, span.begin});
        }
        cursor = span.end;
    }
    if (window.end > cursor) {
        gaps.push_back({cursor, window.end});
    }
    return gaps;
}

// Appends the records of `count` samples from `first` on to a block's bytes;
// false, with the bytes as they were, when the recording does not read.
// Plain values are read straight into the block; records with more than
// the value go through `values`.
bool appendRun(const zlr::ChannelDescriptor& layout, const Recording& recording,
               std::uint64_t first, std::uint64_t count, std::vector<unsigned char>& values,
               BlockBytes& bytes)
{
    const std::size_t width = sampleBytes(recording.encoding());
    if (shapeOf(layout) == RecordShape::synchronous && layout.m_stride == layout.m_size &&
        layout.m_size == width * 8) {
        const std::size_t at = bytes.size();
        bytes.resize(at + count * width);
        if (!recording.read(first, count, bytes.data() + at)) {
            bytes.resize(at);
            return false;
        }
        return true;
    }
    values.resize(count * width);
    if (!recording.read(first, count, values.data())) {
        return false;
    }
    appendRecords(layout, first, count, values.data(), bytes);
    return true;
}

std::string keyText(std::uint64_t key)
{
    return "data set " + std::to_string(key);
}

} // namespace

BlockGrid::BlockGrid(double origin, double duration, double end, double frequency)
    : m_origin(origin), m_end(end), m_frequency(frequency),
      m_origin_ticks(static_cast<std::uint64_t>(std::llround(std::max(origin, 0.0) * frequency))),
      m_step_ticks(std::max<std::uint64_t>(
          1, static_cast<std::uint64_t>(std::llround(std::max(duration, 0.0) * frequency))))
{
}

double BlockGrid::unclipped(std::uint64_t k) const
{
    if (k == 0) {
        return m_origin;
    }
    return static_cast<double>(m_origin_ticks + k * m_step_ticks) / m_frequency;
}

double BlockGrid::boundary(std::uint64_t k) const
{
    return std::min(unclipped(k), m_end);
}

std::uint64_t BlockGrid::boundaryTicks(std::uint64_t k) const
{
    if (unclipped(k) < m_end) {
        return k == 0 ? m_origin_ticks : m_origin_ticks + k * m_step_ticks;
    }
    return static_cast<std::uint64_t>(std::ceil(m_end * m_frequency));
}

std::uint64_t BlockGrid::blockCount() const
{
    if (!(m_end > m_origin)) {
        return 0;
    }
    const double ticks = std::ceil(m_end * m_frequency) - static_cast<double>(m_origin_ticks);
    auto k = std::max<std::uint64_t>(
        1, static_cast<std::uint64_t>(std::max(ticks, 0.0)) / m_step_ticks);
    // The division may land a block off either way; the boundaries decide.
    while (unclipped(k) < m_end) {
        ++k;
    }
    while (k > 1 && unclipped(k - 1) >= m_end) {
        --k;
    }
    return k;
}

std::uint64_t BlockGrid::blocksEndedBy(double now) const
{
    const std::uint64_t count = blockCount();
    if (now >= m_end) {
        return count;
    }
    if (!(now > m_origin)) {
        return 0;
    }
    const double ticks = now * m_frequency - static_cast<double>(m_origin_ticks);
    auto k = std::min(count, static_cast<std::uint64_t>(std::max(ticks, 0.0)) / m_step_ticks);
    while (k < count && boundary(k + 1) <= now) {
        ++k;
    }
    while (k > 0 && boundary(k) > now) {
        --k;
    }
    return k;
}

DataSets::DataSets(SimHost& host, std::shared_ptr<const InputChannels> inputs,
                   std::shared_ptr<const MasterClock> clock)
    : m_host(host), m_inputs(std::move(inputs)), m_clock(std::move(clock))
{
}

const DataSet* DataSets::find(std::uint64_t key) const
{
    const auto found = m_data_sets.find(key);
    return found == m_data_sets.end() ? nullptr : &found->second;
}

DataSet* DataSets::findMutable(std::uint64_t key)
{
    const auto found = m_data_sets.find(key);
    return found == m_data_sets.end() ? nullptr : &found->second;
}

std::vector<std::uint64_t> DataSets::keys() const
{
    std::vector<std::uint64_t> keys;
    for (const auto& entry : m_data_sets) {
        keys.push_back(entry.first);
    }
    return keys;
}

double DataSets::endOf(const DataSet& data_set) const
{
    double end = 0.0;
    for (std::uint64_t id : data_set.channels) {
        if (const InputChannelEntry* channel = m_inputs->find(id)) {
            end = std::max(end, static_cast<double>(channel->recording->length()) /
                                    channel->setup.sample_rate);
        }
    }
    return end;
}

double DataSets::blockDurationFor(double asked) const
{
    if (m_block_duration > 0.0) {
        return m_block_duration;
    }
    return asked > 0.0 && std::isfinite(asked) ? asked : DEFAULT_BLOCK_DURATION;
}

BlockGrid DataSets::streamGrid(const DataSet& data_set) const
{
    return BlockGrid(data_set.stream.start, data_set.stream.block_duration, endOf(data_set),
                     m_clock->frequency());
}

bool DataSets::allStreamsDelivered() const
{
    for (const auto& [key, data_set] : m_data_sets) {
        if (data_set.stream.running &&
            data_set.stream.next_block < streamGrid(data_set).blockCount()) {
            return false;
        }
    }
    return true;
}

BlockListContent DataSets::blocksOf(const DataSet& data_set, const BlockGrid& grid,
                                    std::uint64_t first, std::uint64_t last) const
{
    BlockListContent content;
    if (first >= last) {
        return content;
    }
    for (std::uint64_t k = first; k < last; ++k) {
        content.list.m_intervals.push_back({grid.boundary(k), grid.boundary(k + 1)});
    }
    for (std::uint64_t id : data_set.channels) {
        if (const InputChannelEntry* channel = m_inputs->find(id)) {
            const SampleSpan window =
                samplesOf(*channel, grid.boundary(first), grid.boundary(last));
            for (const SampleSpan& gap : gapsWithin(channel->recording->dataSpans(), window)) {
                content.list.m_regions.push_back({id, gap.begin, gap.end});
            }
        }
    }

    // What each channel of a stream needs at every block, looked up once a
    // request rather than once a block.
    struct Source {
        const zlr::ChannelDescriptor* layout;
        const InputChannelEntry* channel;
        std::shared_ptr<const Recording> delivered; // as doubles, value for value
        std::vector<SampleSpan> spans;
        SampleSpan window; // of the block at hand
    };
    std::vector<Source> sources;
    std::vector<SampleSpan> pieces;
    std::vector<unsigned char> values;
    for (const zlr::StreamDescriptor& stream : data_set.descriptors.m_stream_descriptors) {
        const bool alone = stream.m_channels.size() == 1 &&
                           shapeOf(stream.m_channels.front()) == RecordShape::variable_size;
        sources.clear();
        for (const zlr::ChannelDescriptor& layout : stream.m_channels) {
            if (const InputChannelEntry* channel = m_inputs->find(layout.m_channel_id)) {
                std::shared_ptr<const Recording> delivered = asDoubles(channel->recording);
                std::vector<SampleSpan> spans = delivered->dataSpans();
                sources.push_back({&layout, channel, std::move(delivered), std::move(spans), {}});
            }
        }
        content.blocks.reserve(content.blocks.size() + (last - first));
        // Room for every channel's plain values in all the blocks, so that
        // the bytes are not moved as they grow.
        std::size_t expected = (last - first) * BLOCK_ALIGNMENT;
        for (Source& source : sources) {
            SampleSpan all = samplesOf(*source.channel, grid.boundary(first), grid.boundary(last));
            all.end = std::min(all.end, source.delivered->length());
            expected +=
                (all.end > all.begin ? all.end - all.begin : 0) * (source.layout->m_stride / 8);
        }
        content.bytes.reserve(content.bytes.size() + expected);
        zlr::DataBlock description;
        description.m_stream_id = stream.m_stream_id;
        for (std::uint64_t k = first; k < last; ++k) {
            const std::uint64_t tick = grid.boundaryTicks(k);
            const std::uint64_t duration = grid.boundaryTicks(k + 1) - tick;
            const double block_begin = grid.boundary(k);
            const double block_end = grid.boundary(k + 1);
            DataBlockList::Block block;
            block.offset = content.bytes.size();
            const auto close = [&] {
                description.m_data_size = content.bytes.size() - block.offset;
                block.description = writeDataBlock(description);
                content.blocks.push_back(std::move(block));
                description.m_channels.clear();
                // The next block starts aligned, as one of its own would.
                content.bytes.resize((content.bytes.size() + BLOCK_ALIGNMENT - 1) /
                                     BLOCK_ALIGNMENT * BLOCK_ALIGNMENT);
                block = {};
                block.offset = content.bytes.size();
            };
            for (Source& source : sources) {
                source.window = samplesOf(*source.channel, block_begin, block_end);
                source.window.end = std::min(source.window.end, source.delivered->length());
            }
            for (const Source& source : sources) {
                const zlr::ChannelDescriptor& layout = *source.layout;
                const SampleSpan& window = source.window;
                clipSpans(source.spans, window, pieces);
                if (pieces.empty()) {
                    // An empty run keeps the block, and the step it stands for.
                    pieces.push_back({window.begin, window.begin});
                }
                for (std::size_t p = 0; p < pieces.size(); ++p) {
                    const SampleSpan& piece = pieces[p];
                    zlr::DataBlockChannel run;
                    run.m_offset =
                        static_cast<std::uint32_t>((content.bytes.size() - block.offset) * 8);
                    run.m_channel_id = layout.m_channel_id;
                    run.m_timestamp = tick;
                    run.m_duration = duration;
                    run.m_first_sample_index = piece.begin;
                    run.m_count = piece.end - piece.begin;
                    if (!appendRun(layout, *source.delivered, piece.begin, run.m_count, values,
                                   content.bytes)) {
                        continue;
                    }
                    description.m_channels.push_back(run);
                    // A variable-size run ends where its block ends: one run a block.
                    if (alone && p + 1 < pieces.size()) {
                        close();
                    }
                }
            }
            close();
        }
    }
    content.list.m_block_count = static_cast<std::uint32_t>(content.blocks.size());
    return content;
}

bool DataSets::handleMessage(const MessageRecord& message, zlr::IfValue** result,
                             std::uint64_t& answer)
{
    switch (message.id) {
    case zlr::HOST_DATA_SET_REGISTER:
        answer = registerDataSet(message, result);
        return true;
    case zlr::HOST_DATA_SET_UNREGISTER:
        answer = unregisterDataSet(message);
        return true;
    case zlr::HOST_DATA_STREAM_START:
        answer = startStream(message);
        return true;
    case zlr::HOST_DATA_STREAM_STOP:
        answer = stopStream(message);
        return true;
    case zlr::HOST_DATA_REQUEST:
        answer = requestData(message, result);
        return true;
    case zlr::HOST_DATA_REGIONS_REQUEST:
        answer = requestRegions(message, result);
        return true;
    default:
        return false;
    }
}

std::uint64_t DataSets::refuse(const MessageRecord& message, std::uint64_t answer,
                               std::string reason)
{
    m_host.recordFault(message.id, std::move(reason), message.text);
    return answer;
}

std::uint64_t DataSets::registerDataSet(const MessageRecord& message, zlr::IfValue** result)
{
    zlr::RegisterDataSetTelegram telegram;
    if (message.value_type != zlr::VALUE_TYPE_XML || !readRegisterDataSet(message.text, telegram)) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT, "the data set registration does not read");
    }
    if (!result) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT,
                      "a data set registration without a place for the descriptors");
    }
    const std::uint64_t key = telegram.m_data_set_key;
    if (find(key)) {
        return refuse(message, zlr::RESULT_FAILED, keyText(key) + " is registered already");
    }
    if (telegram.m_channels.empty()) {
        return refuse(message, zlr::RESULT_FAILED, keyText(key) + " names no channel");
    }
    DataSet data_set;
    data_set.key = key;
    data_set.descriptors.m_data_set_key = key;
    zlr::StreamDescriptor shared;
    std::vector<zlr::StreamDescriptor> alone;
    for (std::uint64_t id : telegram.m_channels) {
        const InputChannelEntry* channel = m_inputs->find(id);
        if (!channel) {
            return refuse(message, zlr::RESULT_FAILED,
                          keyText(key) + " names channel " + std::to_string(id) +
                              ", which the host does not have");
        }
        if (!channel->setup.usable) {
            return refuse(message, zlr::RESULT_FAILED,
                          keyText(key) + " names channel " + std::to_string(id) +
                              ", which is not usable");
        }
        if (std::find(data_set.channels.begin(), data_set.channels.end(), id) !=
            data_set.channels.end()) {
            return refuse(message, zlr::RESULT_FAILED,
                          keyText(key) + " names channel " + std::to_string(id) + " twice");
        }
        data_set.channels.push_back(id);
        const zlr::ChannelDescriptor layout = layoutOf(*channel);
        if (shapeOf(layout) == RecordShape::variable_size) {
            alone.push_back({0, {layout}});
        } else {
            shared.m_channels.push_back(layout);
        }
    }
    if (!shared.m_channels.empty()) {
        shared.m_stream_id = m_next_stream_id++;
        data_set.descriptors.m_stream_descriptors.push_back(std::move(shared));
    }
    for (zlr::StreamDescriptor& stream : alone) {
        stream.m_stream_id = m_next_stream_id++;
        data_set.descriptors.m_stream_descriptors.push_back(std::move(stream));
    }
    *result = new XmlValue(m_host.ledger(), writeStreamDescriptors(data_set.descriptors));
    m_data_sets.emplace(key, std::move(data_set));
    return zlr::RESULT_OK;
}

std::uint64_t DataSets::unregisterDataSet(const MessageRecord& message)
{
    if (message.value_type != zlr::VALUE_TYPE_UINT64) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT,
                      "a data set is unregistered by its key as a number value");
    }
    if (m_data_sets.erase(message.number) == 0) {
        return refuse(message, zlr::RESULT_FAILED,
                      keyText(message.number) + " is not registered");
    }
    return zlr::RESULT_OK;
}

std::uint64_t DataSets::startStream(const MessageRecord& message)
{
    DataTransferRequest request;
    if (message.value_type != zlr::VALUE_TYPE_XML || !readDataTransferRequest(message.text, request) ||
        !request.m_stream) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT, "the stream start does not read");
    }
    DataSet* data_set = findMutable(request.m_data_set_key);
    if (!data_set) {
        return refuse(message, zlr::RESULT_FAILED,
                      "a stream on " + keyText(request.m_data_set_key) + ", which is not registered");
    }
    if (data_set->stream.running) {
        return refuse(message, zlr::RESULT_FAILED,
                      "the stream of " + keyText(data_set->key) + " runs already");
    }
    const zlr::StreamRequestTelegram& form = *request.m_stream;
    data_set->stream.running = true;
    data_set->stream.start = form.m_has_start && form.m_start > 0.0 ? form.m_start : 0.0;
    data_set->stream.block_duration =
        blockDurationFor(form.m_has_block_duration ? form.m_block_duration : 0.0);
    data_set->stream.next_block = 0;
    return zlr::RESULT_OK;
}

std::uint64_t DataSets::stopStream(const MessageRecord& message)
{
    DataTransferRequest request;
    if (message.value_type != zlr::VALUE_TYPE_XML || !readDataTransferRequest(message.text, request)) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT, "the stream stop does not read");
    }
    DataSet* data_set = findMutable(request.m_data_set_key);
    if (!data_set) {
        return refuse(message, zlr::RESULT_FAILED,
                      "a stream stop on " + keyText(request.m_data_set_key) +
                          ", which is not registered");
    }
    if (!data_set->stream.running) {
        return refuse(message, zlr::RESULT_FAILED,
                      "a stream stop on " + keyText(data_set->key) + ", whose stream does not run");
    }
    data_set->stream = {};
    return zlr::RESULT_OK;
}

std::uint64_t DataSets::requestData(const MessageRecord& message, zlr::IfValue** result)
{
    DataTransferRequest request;
    if (message.value_type != zlr::VALUE_TYPE_XML || !readDataTransferRequest(message.text, request)) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT, "the data request does not read");
    }
    if (!result) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT,
                      "a data request without a place for the blocks");
    }
    DataSet* data_set = findMutable(request.m_data_set_key);
    if (!data_set) {
        return refuse(message, zlr::RESULT_FAILED,
                      "a data request on " + keyText(request.m_data_set_key) +
                          ", which is not registered");
    }
    BlockListContent content;
    if (request.m_window) {
        const auto [start, end] = *request.m_window;
        if (!std::isfinite(start) || !std::isfinite(end) || start < 0.0 || end < start) {
            return refuse(message, zlr::RESULT_FAILED,
                          "a data request on " + keyText(data_set->key) +
                              " for a window that is no span of time");
        }
        const double duration = data_set->stream.running ? data_set->stream.block_duration
                                                         : blockDurationFor(0.0);
        const BlockGrid grid(start, duration, end, m_clock->frequency());
        content = blocksOf(*data_set, grid, 0, grid.blockCount());
    } else if (request.m_data_stream) {
        if (!data_set->stream.running) {
            return refuse(message, zlr::RESULT_FAILED,
                          "a request for the next blocks of " + keyText(data_set->key) +
                              ", whose stream does not run");
        }
        const BlockGrid grid = streamGrid(*data_set);
        std::uint64_t last = grid.blocksEndedBy(m_clock->seconds());
        if (m_blocks_per_request > 0) {
            last = std::min<std::uint64_t>(last, data_set->stream.next_block + m_blocks_per_request);
        }
        const std::uint64_t first = data_set->stream.next_block;
        content = blocksOf(*data_set, grid, first, std::max(first, last));
        data_set->stream.next_block = std::max(first, last);
    } else {
        return refuse(message, zlr::RESULT_FAILED,
                      "a data request on " + keyText(data_set->key) +
                          " that asks for neither a window nor the stream");
    }
    *result = new DataBlockList(m_host.ledger(), writeDataBlockList(content.list),
                                std::move(content.blocks), std::move(content.bytes));
    return zlr::RESULT_OK;
}

std::uint64_t DataSets::requestRegions(const MessageRecord& message, zlr::IfValue** result)
{
    zlr::DataRegionsRequestTelegram telegram;
    if (message.value_type != zlr::VALUE_TYPE_XML || !readDataRegionsRequest(message.text, telegram)) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT, "the regions request does not read");
    }
    if (!result) {
        return refuse(message, zlr::RESULT_BAD_ARGUMENT,
                      "a regions request without a place for the regions");
    }
    const DataSet* data_set = find(telegram.m_data_set_key);
    if (!data_set) {
        return refuse(message, zlr::RESULT_FAILED,
                      "a regions request on " + keyText(telegram.m_data_set_key) +
                          ", which is not registered");
    }
    std::vector<zlr::DataRegion> regions;
    for (std::uint64_t id : data_set->channels) {
        const InputChannelEntry* channel = m_inputs->find(id);
        if (!channel) {
            continue;
        }
        std::vector<SampleSpan> spans = channel->recording->dataSpans();
        if (telegram.m_has_window) {
            spans = clipSpans(spans, samplesOf(*channel, telegram.m_start, telegram.m_end));
        }
        for (const SampleSpan& span : spans) {
            regions.push_back({id, span.begin, span.end});
        }
    }
    *result = new XmlValue(m_host.ledger(), writeDataRegions(regions));
    return zlr::RESULT_OK;
}

void DataSets::describe(std::ostream& out) const
{
    out << "data sets: " << m_data_sets.size() << "\n";
    for (const auto& [key, data_set] : m_data_sets) {
        out << "  " << key << ": " << data_set.channels.size() << " channels in "
            << data_set.descriptors.m_stream_descriptors.size() << " streams, ends at "
            << endOf(data_set) << " s";
        if (data_set.stream.running) {
            out << ", stream of " << data_set.stream.block_duration << " s blocks from "
                << data_set.stream.start << " s, next block " << data_set.stream.next_block
                << " of " << streamGrid(data_set).blockCount();
        }
        out << "\n";
    }
}

} // namespace zelvar_sim
