// Reads a telegram from a whole text, as the host hands it over.
#pragma once

#include <string>

namespace zlr::test {

template <typename Telegram>
bool parseText(Telegram& telegram, const std::string& text)
{
    return telegram.parse(text.data(), text.size());
}

} // namespace zlr::test
