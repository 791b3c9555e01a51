// The configuration dialogue as the simulated host reads and writes it: the
// plug-in's UpdateConfig (its channels' properties, each with the
// constraints under which a person may edit it), and the host's own
// UpdateConfig when a person changes one setting. The host reads the
// structure itself; only the value inside a property goes through the kit's
// Property, the one form both sides share.
#pragma once

#include "zlrapi_property.h"

#include <pugixml.hpp>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zelvar_sim {

// One constraint as the host keeps it: its element name ("OptionConstraint",
// "DoubleRangeConstraint", ...), its attributes in document order, the
// options of an option constraint and the filters of a file path constraint.
struct HostConstraint {
    std::string kind;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<zlr::Property> options;
    std::vector<std::string> filters;

    // The attribute's text, or empty when it is absent.
    std::string attribute(const std::string& name) const;
};

// One setting of a plug-in channel with its constraints.
struct HostProperty {
    zlr::Property value;
    std::vector<HostConstraint> constraints;
};

// The properties of one channel as one UpdateConfig carries them.
struct HostChannelConfig {
    std::uint32_t local_id = 0;
    std::vector<HostProperty> properties;
};

// Reads an UpdateConfig of the plug-in. Refuses (false, with the reason in
// `why`) what the host cannot take: another root or version than "1.0", a
// child that is not a "Channel", a missing or malformed "local_id", a
// channel named twice, and every malformed property (see readHostProperties).
bool readUpdateConfig(const std::string& text, std::vector<HostChannelConfig>& channels,
                      std::string& why);

// The "Property" children of `parent`. A property needs a non-empty unique
// name, exactly one readable type node and at most one "Constraints" after it;
// a constraint must be one the host knows, with its attributes well formed.
bool readHostProperties(pugi::xml_node parent, std::vector<HostProperty>& properties,
                        std::string& why);

// Appends a "Property" element with its "Constraints" for each property.
void writeHostProperties(pugi::xml_node parent, const std::vector<HostProperty>& properties);

// The UpdateConfig of a person's edit: one property of one channel.
std::string writeUpdateConfig(std::uint32_t local_id, const zlr::Property& property);

// A readable line of a property's value, e.g. `ScalarValue 1.5 "Hz"`.
std::string describeValue(const zlr::Property& property);

// A readable line of a constraint, e.g. `DoubleRangeConstraint min=0 max=90`.
std::string describeConstraint(const HostConstraint& constraint);

} // namespace zelvar_sim
