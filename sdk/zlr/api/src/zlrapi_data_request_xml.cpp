#include "zlrapi_data_request_xml.h"

#include "zlrapi_xml_builder.h"

#include <sstream>

namespace zlr {
namespace {

constexpr const char* DATA_TRANSFER_REQUEST = "DataTransferRequest";

void writeWindow(XmlBuilderElement& root, double start, double end)
{
    root.child("Window", {XmlAttribute("start", start), XmlAttribute("end", end)});
}

} // namespace

std::string DataRegionsRequestTelegram::generate() const
{
    std::ostringstream out;
    XmlBuilder builder(out);
    {
        XmlBuilderElement root =
            builder.child("DataRegionsRequest", {XmlAttribute("data_set_key", m_data_set_key)});
        if (m_has_window) {
            writeWindow(root, m_start, m_end);
        }
    }
    builder.flush();
    return out.str();
}

DataTransferRequestTelegram::DataTransferRequestTelegram(std::uint64_t data_set_key)
    : m_data_set_key(data_set_key), m_data_stream(true)
{
}

DataTransferRequestTelegram::DataTransferRequestTelegram(std::uint64_t data_set_key,
                                                         double start, double end)
    : m_data_set_key(data_set_key), m_start(start), m_end(end), m_has_window(true)
{
}

DataTransferRequestTelegram::DataTransferRequestTelegram(std::uint64_t data_set_key,
                                                         double timestamp)
    : m_data_set_key(data_set_key), m_timestamp(timestamp), m_has_timestamp(true)
{
}

std::string DataTransferRequestTelegram::generate() const
{
    std::ostringstream out;
    XmlBuilder builder(out);
    {
        XmlBuilderElement root =
            builder.child(DATA_TRANSFER_REQUEST, {XmlAttribute("data_set_key", m_data_set_key)});
        if (m_has_window) {
            writeWindow(root, m_start, m_end);
        }
        if (m_has_timestamp) {
            root.child("SingleValue", {XmlAttribute("timestamp", m_timestamp)});
        }
        if (m_data_stream) {
            root.child("DataStream");
        }
    }
    builder.flush();
    return out.str();
}

std::string StreamRequestTelegram::generate() const
{
    const std::string stream_type = toText(m_stream_type);
    std::ostringstream out;
    XmlBuilder builder(out);
    {
        XmlBuilderElement root =
            builder.child(DATA_TRANSFER_REQUEST, {XmlAttribute("data_set_key", m_data_set_key)});
        XmlBuilderElement stream = root.child("Stream");
        if (m_has_start) {
            stream.addAttribute(XmlAttribute("start", m_start));
        }
        if (m_has_block_duration) {
            stream.addAttribute(XmlAttribute("block_duration", m_block_duration));
        }
        if (m_has_ignore_regions) {
            stream.addAttribute(XmlAttribute("ignore_regions", m_ignore_regions));
        }
        stream.addAttribute(XmlAttribute("stream_type", stream_type));
    }
    builder.flush();
    return out.str();
}

std::string StreamStopTelegram::generate() const
{
    std::ostringstream out;
    XmlBuilder builder(out);
    builder.child(DATA_TRANSFER_REQUEST, {XmlAttribute("data_set_key", m_data_set_key)});
    builder.flush();
    return out.str();
}

} // namespace zlr
