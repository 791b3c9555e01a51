// The software channels a plug-in offers in the host's channel list:
// HOST_REGISTER_SOFTWARE_CHANNEL adds one, HOST_REREGISTER_SOFTWARE_CHANNEL
// replaces a registered one, HOST_UNREGISTER_SOFTWARE_CHANNEL (the service
// name as a string value) takes it away. A second registration of a name, a
// re-registration or unregistration of an unknown one are refused.
#pragma once

#include "sim_host_service.h"
#include "sim_software_channel_telegrams.h"

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zelvar_sim {

class SimHost;

class SoftwareChannelRegistry : public HostService {
public:
    explicit SoftwareChannelRegistry(SimHost& host) : m_host(host) {}

    bool handleMessage(const MessageRecord& message, zlr::IfValue** result,
                       std::uint64_t& answer) override;
    void describe(std::ostream& out) const override;

    // Registered now, in the order of registration.
    std::vector<zlr::RegisterSoftwareChannelTelegram> registered() const;
    std::optional<zlr::RegisterSoftwareChannelTelegram> find(const std::string& service) const;

    // How often each message was taken.
    std::size_t registrations() const;
    std::size_t reregistrations() const;
    std::size_t unregistrations() const;

private:
    bool take(const MessageRecord& message, std::string& why);

    SimHost& m_host;
    mutable std::mutex m_mutex;
    std::vector<zlr::RegisterSoftwareChannelTelegram> m_registered;
    std::size_t m_registrations = 0;
    std::size_t m_reregistrations = 0;
    std::size_t m_unregistrations = 0;
};

} // namespace zelvar_sim
