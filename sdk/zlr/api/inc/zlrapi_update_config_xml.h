// The UpdateConfig telegram: the properties of a plug-in's channels, each
// with the constraints under which the user may edit it. The same property
// list with constraints also stands in each channel of UpdatePluginChannels.
#pragma once

#include "zlrapi_constraint.h"
#include "zlrapi_property.h"

#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zlr {

// Property name to its constraints, in order.
using ConstraintMap = std::map<std::string, std::vector<Constraint>>;

struct ChannelConfig {
    std::uint32_t m_local_id = 0;
    std::vector<Property> m_properties;
    ConstraintMap m_constraints;

    // Appends `property` under `name`.
    void addProperty(const std::string& name, const Property& property);
    // Appends `constraint` to those of `name`.
    void addConstraint(const std::string& name, const Constraint& constraint);

    bool operator==(const ChannelConfig&) const = default;
};

struct UpdateConfigTelegram {
    std::vector<ChannelConfig> m_channels;

    // The entry of `local_id`, made at the end when there is none.
    ChannelConfig& getChannelConfig(std::uint32_t local_id);

    std::string generate() const;

    // Refuses another root, a version other than 1.0, any child that is not a
    // "Channel" and a channel without "local_id". Within a channel, reading
    // stops at the first malformed property and keeps what came before it.
    bool parse(const char* text, std::size_t length);

    bool operator==(const UpdateConfigTelegram&) const = default;
};

// Writes each property as a "Property" element under `parent`, with its
// constraints in a "Constraints" child. Constraints of a name that is not
// among the properties are reported and left out.
void writePropertyList(pugi::xml_node parent, const std::vector<Property>& properties,
                       const ConstraintMap& constraints);

// Reads the "Property" children of `parent`, appending to both containers.
// A property with two type nodes gives two properties of its name. False at
// the first property without a name or with a type node that does not read.
bool readPropertyList(pugi::xml_node parent, std::vector<Property>& properties,
                      ConstraintMap& constraints);

// One constraint element under `parent`; a kind or range this kit cannot
// write is reported and nothing is written.
void writeConstraint(pugi::xml_node parent, const Constraint& constraint);

// A constraint element by its name; an unknown name gives kind UNKNOWN.
Constraint readConstraint(pugi::xml_node element);

} // namespace zlr
