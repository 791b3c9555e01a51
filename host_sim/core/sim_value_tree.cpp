#include "sim_value_tree.h"

namespace zelvar_sim {

void ValueTree::put(const std::string& path, const std::string& key, zlr::IfValue* value)
{
    std::lock_guard lock(m_mutex);
    auto [where, inserted] = m_values.try_emplace({path, key}, value);
    if (!inserted) {
        where->second->release();
        where->second = value;
    }
}

void ValueTree::setString(const std::string& path, const std::string& key, const std::string& text)
{
    put(path, key, new StringValue(m_ledger, text));
}

void ValueTree::setXml(const std::string& path, const std::string& key, const std::string& text)
{
    put(path, key, new XmlValue(m_ledger, text));
}

void ValueTree::setBoolean(const std::string& path, const std::string& key, bool value)
{
    put(path, key, new BooleanValue(m_ledger, value));
}

void ValueTree::setScalar(const std::string& path, const std::string& key, double value,
                          const std::string& unit)
{
    put(path, key, new ScalarValue(m_ledger, value, unit));
}

void ValueTree::remove(const std::string& path, const std::string& key)
{
    std::lock_guard lock(m_mutex);
    const auto found = m_values.find({path, key});
    if (found != m_values.end()) {
        found->second->release();
        m_values.erase(found);
    }
}

void ValueTree::clear()
{
    std::lock_guard lock(m_mutex);
    for (auto& entry : m_values) {
        entry.second->release();
    }
    m_values.clear();
}

std::size_t ValueTree::size() const
{
    std::lock_guard lock(m_mutex);
    return m_values.size();
}

zlr::IfValue* ValueTree::query(const std::string& path, const std::string& key)
{
    std::lock_guard lock(m_mutex);
    const auto found = m_values.find({path, key});
    if (found == m_values.end()) {
        return nullptr;
    }
    found->second->addRef();
    return found->second;
}

} // namespace zelvar_sim
