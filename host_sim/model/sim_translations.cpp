#include "sim_translations.h"

#include "sim_host.h"
#include "sim_message_telegram.h"
#include "zlrbase_messages.h"

#include <ostream>

namespace zelvar_sim {

bool TranslationService::handleMessage(const MessageRecord& message, zlr::IfValue**,
                                       std::uint64_t& answer)
{
    if (message.id != zlr::HOST_ADD_TRANSLATION) {
        return false;
    }
    std::string why;
    TranslationCatalogue catalogue;
    const auto text = telegramOf(message, TelegramCarriers{true, false}, why);
    if (!text || !readTranslation(*text, catalogue, why)) {
        m_host.recordFault(message.id, why, message.text);
        answer = zlr::RESULT_BAD_ARGUMENT;
        return true;
    }
    std::lock_guard lock(m_mutex);
    auto [known, added] = m_catalogues.try_emplace(catalogue.language, catalogue);
    if (added) {
        m_languages.push_back(catalogue.language);
    } else {
        for (const auto& [key, translation] : catalogue.messages) {
            known->second.messages[key] = translation;
        }
    }
    answer = zlr::RESULT_OK;
    return true;
}

std::vector<std::string> TranslationService::languages() const
{
    std::lock_guard lock(m_mutex);
    return m_languages;
}

std::optional<TranslationCatalogue> TranslationService::catalogue(
    const std::string& language) const
{
    std::lock_guard lock(m_mutex);
    const auto found = m_catalogues.find(language);
    if (found == m_catalogues.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::optional<std::string> TranslationService::translate(const std::string& language,
                                                         const std::string& context,
                                                         const std::string& source) const
{
    const auto known = catalogue(language);
    if (!known) {
        return std::nullopt;
    }
    const auto found = known->messages.find({context, source});
    if (found == known->messages.end()) {
        return std::nullopt;
    }
    return found->second;
}

void TranslationService::describe(std::ostream& out) const
{
    std::lock_guard lock(m_mutex);
    out << "translations:";
    if (m_languages.empty()) {
        out << " none";
    }
    for (const std::string& language : m_languages) {
        out << " " << language << " (" << m_catalogues.at(language).messages.size()
            << " texts)";
    }
    out << "\n";
}

} // namespace zelvar_sim
