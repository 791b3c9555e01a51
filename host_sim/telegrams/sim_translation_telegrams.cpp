#include "sim_translation_telegrams.h"

#include "sim_xml_reading.h"

#include <cstring>

namespace zelvar_sim {
namespace {

bool readMessage(pugi::xml_node message, const std::string& context,
                 TranslationCatalogue& catalogue, std::string& why)
{
    const pugi::xml_node source = message.child("source");
    const pugi::xml_node translation = message.child("translation");
    if (!source || !translation) {
        why = "a message of context " + context + " without source or translation";
        return false;
    }
    for (pugi::xml_node child : message.children()) {
        const bool known = std::strcmp(child.name(), "source") == 0 ||
                           std::strcmp(child.name(), "translation") == 0 ||
                           std::strcmp(child.name(), "comment") == 0;
        if (!known) {
            why = std::string("a message with unknown ") + child.name();
            return false;
        }
    }
    const std::string source_text = source.child_value();
    if (source_text.empty()) {
        why = "a message of context " + context + " with an empty source";
        return false;
    }
    if (!catalogue.messages.emplace(std::make_pair(context, source_text), translation.child_value())
             .second) {
        why = "source " + source_text + " twice in context " + context;
        return false;
    }
    return true;
}

} // namespace

bool readTranslation(const std::string& text, TranslationCatalogue& catalogue, std::string& why)
{
    catalogue = {};
    pugi::xml_document document;
    const pugi::xml_node root = strictRoot(document, text, "TS", false);
    if (!root) {
        why = "not a TS document";
        return false;
    }
    catalogue.language = root.attribute("language").value();
    catalogue.source_language = root.attribute("sourcelanguage").value();
    if (catalogue.language.empty()) {
        why = "a catalogue without language";
        return false;
    }
    for (pugi::xml_node context : root.children()) {
        if (std::strcmp(context.name(), "context") != 0) {
            why = std::string("unexpected ") + context.name() + " in TS";
            return false;
        }
        const pugi::xml_node name = context.child("name");
        if (!name || !*name.child_value()) {
            why = "a context without name";
            return false;
        }
        for (pugi::xml_node child : context.children()) {
            if (std::strcmp(child.name(), "name") == 0) {
                continue;
            }
            if (std::strcmp(child.name(), "message") != 0) {
                why = std::string("unexpected ") + child.name() + " in context " +
                      name.child_value();
                return false;
            }
            if (!readMessage(child, name.child_value(), catalogue, why)) {
                return false;
            }
        }
    }
    return true;
}

} // namespace zelvar_sim
