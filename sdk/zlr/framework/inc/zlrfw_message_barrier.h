// What a message answers when an exception reaches the barrier of a message
// handler, so that none ever crosses into the host.
#pragma once

#include <cstdint>

namespace zlr::framework {

// Call only inside a catch block. A CallbackError answers its own code; any
// other exception is logged at severity 6 as "Unhandled exception during
// 'pluginMessage <id>' : <text>" (without a text the tail is "'" alone)
// and answers 13.
std::uint64_t answerCaughtException(std::uint64_t message_id);

} // namespace zlr::framework
