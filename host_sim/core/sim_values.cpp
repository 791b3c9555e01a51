#include "sim_values.h"

namespace zelvar_sim {

zlr::IfValue* makeValue(ValueLedger& ledger, std::uint32_t type)
{
    switch (type) {
    case zlr::VALUE_TYPE_ERROR:
        return new ErrorValue(ledger);
    case zlr::VALUE_TYPE_STRING:
        return new StringValue(ledger);
    case zlr::VALUE_TYPE_XML:
        return new XmlValue(ledger);
    case zlr::VALUE_TYPE_BOOLEAN:
        return new BooleanValue(ledger);
    case zlr::VALUE_TYPE_UINT64:
        return new UInt64Value(ledger);
    default:
        return nullptr;
    }
}

std::string valueText(zlr::IfValue* value)
{
    if (!value) {
        return {};
    }
    switch (value->getType()) {
    case zlr::VALUE_TYPE_STRING: {
        const char* text = static_cast<zlr::IfStringValue*>(value)->getData();
        return text ? text : "";
    }
    case zlr::VALUE_TYPE_XML: {
        auto* xml = static_cast<zlr::IfXmlValue*>(value);
        const char* text = xml->getData();
        return text ? std::string(text, static_cast<std::size_t>(xml->getLength())) : "";
    }
    default:
        return {};
    }
}

} // namespace zelvar_sim
