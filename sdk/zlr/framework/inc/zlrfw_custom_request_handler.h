// Answers PLUGIN_CUSTOM_REQUEST from a table of numbered handlers.
#pragma once

#include "zlrfw_message_handler.h"

#include <cstdint>
#include <functional>
#include <map>

namespace zlr::framework {

class CustomRequestHandler : public IfMessageHandler {
public:
    using Handler = std::function<std::uint64_t(IfHost* host, IfValue* value, IfValue** result)>;

    std::uint64_t pluginMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                                IfValue** result) override;
    void setPluginHost(IfHost* host) override;

    // Keys 1 to 0x7FFFFFFF are accepted; the table holds their low 16 bits.
    void registerHandler(std::uint16_t request_id, Handler handler);

private:
    IfHost* m_host = nullptr;
    std::map<std::uint16_t, Handler> m_handlers;
};

} // namespace zlr::framework
