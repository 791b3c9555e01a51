#include "sim_message_telegram.h"

#include "zlrbase_values.h"

namespace zelvar_sim {

std::optional<std::string> telegramOf(const MessageRecord& message, TelegramCarriers carriers,
                                      std::string& why)
{
    if (message.kind == CallKind::sync_data) {
        if (!carriers.data) {
            why = "a telegram sent as bytes where an XML value belongs";
            return std::nullopt;
        }
        if (message.bytes.empty() || message.bytes.back() != 0) {
            why = "bytes without the terminator counted";
            return std::nullopt;
        }
        if (message.text.size() + 1 != message.bytes.size()) {
            why = "bytes with a terminator inside the text";
            return std::nullopt;
        }
        return message.text;
    }
    if (!carriers.xml_value) {
        why = "an XML value where the telegram belongs in the bytes";
        return std::nullopt;
    }
    if (message.value_type != zlr::IfXmlValue::TYPE_CODE) {
        why = message.value_type == 0 ? "no value where an XML value belongs"
                                      : "a value of type " + std::to_string(message.value_type) +
                                            " where an XML value belongs";
        return std::nullopt;
    }
    return message.text;
}

} // namespace zelvar_sim
