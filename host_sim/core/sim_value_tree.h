// The host's tree of named values ("#PluginHost", "#Zelvar",
// "#Zelvar#Channels#<id>", ...), which plug-ins read with queryValue. The
// tree holds one reference to each value; a query hands out one more.
#pragma once

#include "sim_values.h"

#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace zelvar_sim {

class ValueTree {
public:
    explicit ValueTree(ValueLedger& ledger) : m_ledger(ledger) {}
    ValueTree(const ValueTree&) = delete;
    ValueTree& operator=(const ValueTree&) = delete;
    ~ValueTree() { clear(); }

    void setString(const std::string& path, const std::string& key, const std::string& text);
    void setXml(const std::string& path, const std::string& key, const std::string& text);
    void setBoolean(const std::string& path, const std::string& key, bool value);
    void setScalar(const std::string& path, const std::string& key, double value,
                   const std::string& unit);
    void remove(const std::string& path, const std::string& key);
    void clear();
    std::size_t size() const;

    // The value with one reference for the caller, or null.
    zlr::IfValue* query(const std::string& path, const std::string& key);

private:
    void put(const std::string& path, const std::string& key, zlr::IfValue* value);

    ValueLedger& m_ledger;
    mutable std::mutex m_mutex;
    std::map<std::pair<std::string, std::string>, zlr::IfValue*> m_values;
};

} // namespace zelvar_sim
