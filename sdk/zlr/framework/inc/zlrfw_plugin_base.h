// The root of every plug-in object: hands the host to its handlers, offers
// each message first to the plug-in and then to the handlers, and turns
// PLUGIN_INIT and PLUGIN_FINISH into init and deinit.
#pragma once

#include "zlrbase_plugin.h"
#include "zlrfw_message_handler.h"

#include <map>
#include <memory>

namespace zlr::framework {

class PluginBase : public IfPlugin {
public:
    void setPluginHost(IfHost* host) override;
    std::uint64_t pluginMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                                IfValue** result) override;
    bool handleMessage(std::uint64_t id, std::uint64_t key, IfValue* value, IfValue** result,
                       std::uint64_t& answer) override;

protected:
    // Registers a handler once and tells it the host known so far (null while
    // the constructors run).
    void addMessageHandler(const std::shared_ptr<IfMessageHandler>& handler);

    IfHost* m_host = nullptr;
    // Keyed by address, so dispatch order means nothing: handlers must not
    // depend on one another.
    std::map<IfMessageHandler*, std::shared_ptr<IfMessageHandler>> m_message_handlers;

private:
    std::uint64_t dispatch(std::uint64_t id, std::uint64_t key, IfValue* value,
                           IfValue** result);
};

} // namespace zlr::framework
