// The translation catalogue a plug-in hands the host (HOST_ADD_TRANSLATION):
// a "TS" document of contexts, each with messages of a source text and its
// translation, for one language.
#pragma once

#include <map>
#include <string>
#include <utility>

namespace zelvar_sim {

struct TranslationCatalogue {
    std::string language;
    std::string source_language;
    // (context name, source text) -> translation.
    std::map<std::pair<std::string, std::string>, std::string> messages;
};

// Refuses another root, a missing "language", a "context" without a "name",
// a "message" without a "source" or "translation", an unknown element and a
// source text named twice in one context.
bool readTranslation(const std::string& text, TranslationCatalogue& catalogue, std::string& why);

} // namespace zelvar_sim
