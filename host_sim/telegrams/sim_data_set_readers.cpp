#include "sim_data_set_readers.h"

#include "xpugixml.h"
#include "zlrapi_numbers.h"

#include <stdexcept>
#include <string_view>
#include <tuple>
#include <vector>

namespace zelvar_sim {
namespace {

// The root of a parsed text when it has the expected name; null otherwise.
pugi::xml_node rootNamed(pugi::xml_document& document, const std::string& text,
                         std::string_view name, bool versioned)
{
    if (!xpugi::parse(document, text.data(), text.size())) {
        return {};
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != name) {
        return {};
    }
    if (versioned && !xpugi::has_supported_protocol_version(root)) {
        return {};
    }
    return root;
}

// Number readers: a missing or malformed attribute throws std::logic_error.
std::uint64_t unsignedOf(pugi::xml_node element, const char* name)
{
    const pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute) {
        throw std::invalid_argument(name);
    }
    return zlr::stoullChecked(attribute.value(), 10);
}

double doubleOf(pugi::xml_node element, const char* name)
{
    const pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute) {
        throw std::invalid_argument(name);
    }
    return zlr::stodChecked(attribute.value());
}

bool booleanOf(pugi::xml_node element, const char* name)
{
    const std::string_view text = element.attribute(name).value();
    if (text != "true" && text != "false") {
        throw std::invalid_argument(name);
    }
    return text == "true";
}

template <typename Enum>
Enum enumOf(pugi::xml_node element, const char* name)
{
    Enum value{};
    if (!zlr::fromText(element.attribute(name).value(), value)) {
        throw std::invalid_argument(name);
    }
    return value;
}

std::vector<std::uint64_t> channelListOf(pugi::xml_node parent, const char* name)
{
    const pugi::xml_node list = parent.child(name);
    if (!list) {
        throw std::invalid_argument(name);
    }
    std::vector<std::uint64_t> ids;
    for (pugi::xml_node channel : list.children("Channel")) {
        ids.push_back(unsignedOf(channel, "channel_id"));
    }
    return ids;
}

std::pair<double, double> windowOf(pugi::xml_node window)
{
    return {doubleOf(window, "start"), doubleOf(window, "end")};
}

} // namespace

bool readRegisterDataSet(const std::string& text, zlr::RegisterDataSetTelegram& telegram)
{
    pugi::xml_document document;
    const pugi::xml_node root = rootNamed(document, text, "RegisterDataSet", true);
    if (!root) {
        return false;
    }
    try {
        telegram.m_data_set_key = unsignedOf(root, "data_set_key");
        telegram.m_type = enumOf<zlr::DataSetType>(root, "type");
        telegram.m_mode = enumOf<zlr::DataSetMode>(root, "mode");
        telegram.m_policy = enumOf<zlr::StreamPolicy>(root, "policy");
        telegram.m_channels = channelListOf(root, "Channels");
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

bool readAcquisitionTaskAdd(const std::string& text, zlr::AcquisitionTaskAddTelegram& telegram)
{
    pugi::xml_document document;
    const pugi::xml_node root = rootNamed(document, text, "AcquisitionTaskAdd", true);
    if (!root) {
        return false;
    }
    try {
        telegram.m_acquisition_task_key = unsignedOf(root, "acquisition_task_key");
        telegram.m_block_duration = doubleOf(root, "block_duration");
        telegram.m_input_channels = channelListOf(root, "InputChannels");
        telegram.m_output_channels = channelListOf(root, "OutputChannels");
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

bool readDataTransferRequest(const std::string& text, DataTransferRequest& request)
{
    request = {};
    pugi::xml_document document;
    const pugi::xml_node root = rootNamed(document, text, "DataTransferRequest", false);
    if (!root) {
        return false;
    }
    try {
        request.m_data_set_key = unsignedOf(root, "data_set_key");
        if (const pugi::xml_node window = root.child("Window")) {
            request.m_window = windowOf(window);
        }
        if (const pugi::xml_node single = root.child("SingleValue")) {
            request.m_single_value = doubleOf(single, "timestamp");
        }
        request.m_data_stream = static_cast<bool>(root.child("DataStream"));
        if (const pugi::xml_node stream = root.child("Stream")) {
            zlr::StreamRequestTelegram form;
            form.m_data_set_key = request.m_data_set_key;
            if ((form.m_has_start = static_cast<bool>(stream.attribute("start")))) {
                form.m_start = doubleOf(stream, "start");
            }
            if ((form.m_has_block_duration = static_cast<bool>(stream.attribute("block_duration")))) {
                form.m_block_duration = doubleOf(stream, "block_duration");
            }
            if ((form.m_has_ignore_regions = static_cast<bool>(stream.attribute("ignore_regions")))) {
                form.m_ignore_regions = booleanOf(stream, "ignore_regions");
            }
            form.m_stream_type = enumOf<zlr::StreamType>(stream, "stream_type");
            request.m_stream = form;
        }
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

bool readDataRegionsRequest(const std::string& text, zlr::DataRegionsRequestTelegram& telegram)
{
    pugi::xml_document document;
    const pugi::xml_node root = rootNamed(document, text, "DataRegionsRequest", false);
    if (!root) {
        return false;
    }
    try {
        telegram.m_data_set_key = unsignedOf(root, "data_set_key");
        telegram.m_has_window = false;
        if (const pugi::xml_node window = root.child("Window")) {
            std::tie(telegram.m_start, telegram.m_end) = windowOf(window);
            telegram.m_has_window = true;
        }
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

} // namespace zelvar_sim
