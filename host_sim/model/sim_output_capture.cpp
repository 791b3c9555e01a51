#include "sim_output_capture.h"

#include "zlrbase_messages.h"

#include <cstring>
#include <ostream>

namespace zelvar_sim {

OutputCapture::OutputCapture(SimHost& host) : m_host(host) {}

const std::vector<CapturedBlock>& OutputCapture::blocks(std::uint32_t local_id) const
{
    static const std::vector<CapturedBlock> none;
    const auto found = m_blocks.find(local_id);
    return found == m_blocks.end() ? none : found->second;
}

std::vector<double> OutputCapture::values(std::uint32_t local_id) const
{
    std::vector<double> all;
    for (const CapturedBlock& block : blocks(local_id)) {
        all.insert(all.end(), block.values.begin(), block.values.end());
    }
    return all;
}

std::vector<CapturedBlock> OutputCapture::takeBlocks(std::uint32_t local_id)
{
    const auto found = m_blocks.find(local_id);
    if (found == m_blocks.end()) {
        return {};
    }
    std::vector<CapturedBlock> taken = std::move(found->second);
    m_blocks.erase(found);
    return taken;
}

std::vector<std::uint32_t> OutputCapture::channels() const
{
    std::vector<std::uint32_t> ids;
    for (const auto& entry : m_blocks) {
        ids.push_back(entry.first);
    }
    return ids;
}

bool OutputCapture::handleMessage(const MessageRecord& message, zlr::IfValue**,
                                  std::uint64_t& answer)
{
    if (message.id != zlr::HOST_WRITE_SAMPLES) {
        return false;
    }
    const std::vector<unsigned char>& bytes = message.bytes;
    if (message.kind != CallKind::sync_data || bytes.size() < 8 || (bytes.size() - 8) % 8 != 0 ||
        message.key > 0xFFFFFFFFu) {
        m_host.recordFault(message.id,
                           "a sample block of " + std::to_string(bytes.size()) +
                               " bytes for channel " + std::to_string(message.key) +
                               " is not an index and whole doubles",
                           "");
        answer = zlr::RESULT_BAD_ARGUMENT;
        return true;
    }
    std::uint64_t first_index = 0;
    std::memcpy(&first_index, bytes.data(), 8);
    const std::size_t count = (bytes.size() - 8) / 8;
    std::vector<CapturedBlock>& blocks = m_blocks[static_cast<std::uint32_t>(message.key)];
    // A plug-in writes a value or two per process call: an hour of them as
    // separate blocks would cost far more than the values themselves.
    const bool continues = !blocks.empty() &&
                           blocks.back().first_index + blocks.back().values.size() == first_index;
    if (!continues) {
        blocks.push_back({first_index, {}});
    }
    std::vector<double>& values = blocks.back().values;
    values.resize(values.size() + count);
    if (count != 0) {
        std::memcpy(values.data() + values.size() - count, bytes.data() + 8, count * 8);
    }
    answer = zlr::RESULT_OK;
    return true;
}

void OutputCapture::describe(std::ostream& out) const
{
    out << "output channels written: " << m_blocks.size() << "\n";
    for (const auto& [id, blocks] : m_blocks) {
        std::size_t count = 0;
        for (const CapturedBlock& block : blocks) {
            count += block.values.size();
        }
        out << "  " << id << ": " << blocks.size() << " blocks, " << count << " values";
        if (!blocks.empty()) {
            out << ", first index " << blocks.front().first_index;
        }
        out << "\n";
    }
}

} // namespace zelvar_sim
