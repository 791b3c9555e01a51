#include "zlrfw_plugin_base.h"

#include "zlrapi_utils.h"
#include "zlrbase_messages.h"
#include "zlrfw_message_barrier.h"

#include <string>

namespace zlr::framework {

void PluginBase::setPluginHost(IfHost* host)
{
    m_host = host;
    for (auto& entry : m_message_handlers) {
        entry.second->setPluginHost(host);
    }
}

void PluginBase::addMessageHandler(const std::shared_ptr<IfMessageHandler>& handler)
{
    if (m_message_handlers.emplace(handler.get(), handler).second) {
        handler->setPluginHost(m_host);
    }
}

bool PluginBase::handleMessage(std::uint64_t, std::uint64_t, IfValue*, IfValue**,
                               std::uint64_t&)
{
    return false;
}

std::uint64_t PluginBase::pluginMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                                        IfValue** result)
{
    // The host is not ours to crash: whatever a handler lets escape ends
    // here, logged as at the barrier of the channels' handler.
    try {
        return dispatch(id, key, value, result);
    } catch (...) {
        return answerCaughtException(id);
    }
}

std::uint64_t PluginBase::dispatch(std::uint64_t id, std::uint64_t key, IfValue* value,
                                   IfValue** result)
{
    std::uint64_t answer = 0;
    if (handleMessage(id, key, value, result, answer)) {
        return answer;
    }

    for (auto& entry : m_message_handlers) {
        const std::uint64_t handled = entry.second->pluginMessage(id, key, value, result);
        if (handled != RESULT_NOT_HANDLED) {
            return handled;
        }
    }

    if (id == PLUGIN_INIT) {
        std::string error_text;
        const std::uint64_t code = init(error_text);
        // Only a failure without a text gets an error object: the host then
        // has at least the code in a form it can show.
        if (code != RESULT_OK && result && m_host && error_text.empty()) {
            zlrbase_api_object_ptr<IfErrorValue> error = createTypedValue<IfErrorValue>(m_host);
            if (error) {
                error->set(code, "");
                *result = error.detach();
            }
        }
        return code;
    }
    if (id == PLUGIN_FINISH) {
        return deinit() ? RESULT_OK : RESULT_FAILED;
    }
    return RESULT_NOT_HANDLED;
}

} // namespace zlr::framework
