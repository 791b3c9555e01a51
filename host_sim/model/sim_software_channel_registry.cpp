#include "sim_software_channel_registry.h"

#include "sim_host.h"
#include "sim_message_telegram.h"
#include "zlrbase_messages.h"

#include <algorithm>
#include <ostream>

namespace zelvar_sim {

bool SoftwareChannelRegistry::handleMessage(const MessageRecord& message, zlr::IfValue**,
                                            std::uint64_t& answer)
{
    if (message.id != zlr::HOST_REGISTER_SOFTWARE_CHANNEL &&
        message.id != zlr::HOST_REREGISTER_SOFTWARE_CHANNEL &&
        message.id != zlr::HOST_UNREGISTER_SOFTWARE_CHANNEL) {
        return false;
    }
    std::string why;
    if (!take(message, why)) {
        m_host.recordFault(message.id, why, message.text);
        answer = zlr::RESULT_BAD_ARGUMENT;
        return true;
    }
    answer = zlr::RESULT_OK;
    return true;
}

bool SoftwareChannelRegistry::take(const MessageRecord& message, std::string& why)
{
    if (message.id == zlr::HOST_UNREGISTER_SOFTWARE_CHANNEL) {
        if (message.kind != CallKind::sync || message.value_type != zlr::IfStringValue::TYPE_CODE) {
            why = "the service name not as a string value";
            return false;
        }
        std::lock_guard lock(m_mutex);
        const auto found = std::find_if(m_registered.begin(), m_registered.end(),
                                        [&](const auto& known) {
                                            return known.m_service_name == message.text;
                                        });
        if (found == m_registered.end()) {
            why = "\"" + message.text + "\" is not registered";
            return false;
        }
        m_registered.erase(found);
        ++m_unregistrations;
        return true;
    }
    zlr::RegisterSoftwareChannelTelegram telegram;
    const auto text = telegramOf(message, TelegramCarriers{true, false}, why);
    if (!text) {
        return false;
    }
    if (!readRegisterSoftwareChannel(*text, telegram)) {
        why = "not a readable RegisterSoftwareChannel";
        return false;
    }
    if (telegram.m_service_name.empty()) {
        why = "a registration without a service name";
        return false;
    }
    std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_registered.begin(), m_registered.end(),
                                    [&](const auto& known) {
                                        return known.m_service_name == telegram.m_service_name;
                                    });
    if (message.id == zlr::HOST_REGISTER_SOFTWARE_CHANNEL) {
        if (found != m_registered.end()) {
            why = "\"" + telegram.m_service_name + "\" is registered already";
            return false;
        }
        m_registered.push_back(telegram);
        ++m_registrations;
        return true;
    }
    if (found == m_registered.end()) {
        why = "\"" + telegram.m_service_name + "\" is re-registered but was never registered";
        return false;
    }
    *found = telegram;
    ++m_reregistrations;
    return true;
}

std::vector<zlr::RegisterSoftwareChannelTelegram> SoftwareChannelRegistry::registered() const
{
    std::lock_guard lock(m_mutex);
    return m_registered;
}

std::optional<zlr::RegisterSoftwareChannelTelegram> SoftwareChannelRegistry::find(
    const std::string& service) const
{
    std::lock_guard lock(m_mutex);
    for (const auto& known : m_registered) {
        if (known.m_service_name == service) {
            return known;
        }
    }
    return std::nullopt;
}

std::size_t SoftwareChannelRegistry::registrations() const
{
    std::lock_guard lock(m_mutex);
    return m_registrations;
}

std::size_t SoftwareChannelRegistry::reregistrations() const
{
    std::lock_guard lock(m_mutex);
    return m_reregistrations;
}

std::size_t SoftwareChannelRegistry::unregistrations() const
{
    std::lock_guard lock(m_mutex);
    return m_unregistrations;
}

void SoftwareChannelRegistry::describe(std::ostream& out) const
{
    std::lock_guard lock(m_mutex);
    out << "software channels: " << m_registered.size() << " registered\n";
    for (const auto& known : m_registered) {
        out << "  " << known.m_service_name << " \"" << known.m_display_name << "\" in \""
            << known.m_display_group << "\"" << (known.m_analysis_capable ? ", analysis" : "")
            << (known.m_acquisition_capable ? ", acquisition" : "");
        if (!known.m_ui_item_name.empty()) {
            out << ", item " << known.m_ui_item_name;
        }
        out << "\n";
    }
}

} // namespace zelvar_sim
