// The telegram text a plug-in's message carries, the way the host takes it:
// as the text of an XML value (messageSync) or as bytes that end in the
// terminator (messageSyncData); what a message may use depends on the message.
#pragma once

#include "sim_message_record.h"

#include <optional>
#include <string>

namespace zelvar_sim {

struct TelegramCarriers {
    bool xml_value = false;
    bool data = false;
};

// The text, or nothing with the reason in `why` when the message carries its
// telegram in a way the host does not take for this message.
std::optional<std::string> telegramOf(const MessageRecord& message, TelegramCarriers carriers,
                                      std::string& why);

} // namespace zelvar_sim
