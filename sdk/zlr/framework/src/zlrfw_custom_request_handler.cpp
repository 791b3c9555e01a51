#include "zlrfw_custom_request_handler.h"

#include "zlrbase_messages.h"

namespace zlr::framework {

std::uint64_t CustomRequestHandler::pluginMessage(std::uint64_t id, std::uint64_t key,
                                                  IfValue* value, IfValue** result)
{
    if (id != PLUGIN_CUSTOM_REQUEST) {
        return RESULT_NOT_HANDLED;
    }
    if (key == 0 || key > 0x7FFFFFFF) {
        return RESULT_NOT_HANDLED;
    }
    const auto found = m_handlers.find(static_cast<std::uint16_t>(key));
    if (found == m_handlers.end()) {
        return RESULT_NOT_HANDLED;
    }
    return found->second(m_host, value, result);
}

void CustomRequestHandler::setPluginHost(IfHost* host)
{
    m_host = host;
}

void CustomRequestHandler::registerHandler(std::uint16_t request_id, Handler handler)
{
    m_handlers[request_id] = std::move(handler);
}

} // namespace zlr::framework
