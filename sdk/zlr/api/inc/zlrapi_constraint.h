// A rule under which the user may edit a property: options to pick from, a
// range, a pattern, a visibility, a file dialogue, ... Its parameters are
// named properties, so that any value type can be an option.
#pragma once

#include "zlrapi_property.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zlr {

class Constraint {
public:
    enum Kind : std::uint32_t {
        // Read from an element this kit does not know; written back, it is
        // reported and dropped.
        UNKNOWN = 0,
        OPTION = 1,
        RANGE = 2,
        REGULAR_EXPRESSION = 3,
        STRING = 4,
        CHANNEL_IDS = 5,
        VISIBILITY = 6,
        FILE_PATH = 7,
    };

    struct ChannelIds {
        std::uint32_t m_max_items = 0;
        std::int32_t m_max_dimension = 0;
        std::string m_channel_type;
    };

    struct FilePath {
        // The key of the host's enumeration "DialogFileType".
        std::string m_file_type;
        std::string m_dialog_title;
        std::string m_default_path;
        std::vector<std::string> m_name_filters;
        bool m_multi_select = false;
    };

    Constraint() = default;
    Constraint(Kind kind, PropertyList parameters);

    // "min" and "max" get their names here; both DoubleValue or both ScalarValue.
    static Constraint range(Property min, Property max);
    // Each option is renamed "option".
    static Constraint options(const std::vector<Property>& options);
    static Constraint regularExpression(const std::string& regex);
    static Constraint freeText();
    static Constraint channelIds(std::uint32_t max_items, std::int32_t max_dimension,
                                 const std::string& channel_type);
    static Constraint visibility(const std::string& visibility);
    static Constraint filePath(const FilePath& file_path);

    Kind getKind() const { return m_kind; }
    const PropertyList& getParameters() const { return m_parameters; }

    // Accessors by kind; each throws std::runtime_error
    // ("constraint is not of type ...") when the kind does not fit.
    std::pair<Property, Property> getRange() const;
    std::string getRegularExpression() const;
    std::string getVisibility() const;
    FilePath getFilePath() const;
    ChannelIds getChannelIds() const;

    bool operator==(const Constraint&) const = default;

private:
    void requireKind(Kind kind, const char* text) const;

    Kind m_kind = UNKNOWN;
    PropertyList m_parameters;
};

} // namespace zlr
