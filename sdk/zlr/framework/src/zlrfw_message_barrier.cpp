#include "zlrfw_message_barrier.h"

#include "zlrbase_messages.h"
#include "zlrfw_callback_error.h"
#include "zlruni_logger.h"

#include <exception>

namespace zlr::framework {

std::uint64_t answerCaughtException(std::uint64_t message_id)
{
    try {
        throw;
    } catch (const CallbackError& error) {
        return error.code();
    } catch (const std::exception& error) {
        ZLR_LOG(UniLogSeverityLevel::Error, "Unhandled exception during 'pluginMessage "
                                                << message_id << "' : " << error.what());
    } catch (...) {
        ZLR_LOG(UniLogSeverityLevel::Error,
                "Unhandled exception during 'pluginMessage " << message_id << "'");
    }
    return RESULT_EXCEPTION;
}

} // namespace zlr::framework
