// The translation catalogues a plug-in gave the host (HOST_ADD_TRANSLATION),
// by language. A later catalogue of a language adds to the earlier one and
// wins where both name the same text.
#pragma once

#include "sim_host_service.h"
#include "sim_translation_telegrams.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zelvar_sim {

class SimHost;

class TranslationService : public HostService {
public:
    explicit TranslationService(SimHost& host) : m_host(host) {}

    bool handleMessage(const MessageRecord& message, zlr::IfValue** result,
                       std::uint64_t& answer) override;
    void describe(std::ostream& out) const override;

    // The languages in the order they first came.
    std::vector<std::string> languages() const;
    std::optional<TranslationCatalogue> catalogue(const std::string& language) const;
    // The translation of `source` in `context`, or nothing.
    std::optional<std::string> translate(const std::string& language, const std::string& context,
                                         const std::string& source) const;

private:
    SimHost& m_host;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_languages;
    std::map<std::string, TranslationCatalogue> m_catalogues;
};

} // namespace zelvar_sim
