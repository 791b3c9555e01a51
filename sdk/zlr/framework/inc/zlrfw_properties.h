// The settings that a plug-in channel carries. Each keeps a typed value and the
// rules for editing it, writes itself into UpdateConfig as a Property with its
// constraints, takes values that come from the host, and tells its channel
// when the plug-in itself changed it.
#pragma once

#include "zlrapi_property.h"
#include "zlrapi_update_config_xml.h"
#include "zlrfw_channel_listeners.h"

#include <cstdint>
#include <optional>
#include <regex>
#include <string>
#include <vector>

namespace zlr::framework {

class IfChannelProperty {
public:
    // Binds the property to its channel; null detaches. The listener is not owned.
    virtual void setChangeListener(IfChannelPropertyChangeListener* listener) = 0;
    // Appends the property under `name` to `config`, with its constraints.
    virtual void updateTelegram(ChannelConfig& config, const std::string& name) const = 0;
    // Takes a value from the host. Never notifies: the host knows already.
    // False keeps the old value; a value of a type that does not fit may
    // also throw the getter's exception.
    virtual bool update(const Property& property) = 0;
    virtual ~IfChannelProperty() = default;

protected:
    // The class's own part of updateTelegram.
    virtual void toTelegram(ChannelConfig& config, const std::string& name) const = 0;
};

class PropertyBase : public IfChannelProperty {
public:
    void setChangeListener(IfChannelPropertyChangeListener* listener) final;
    // Nothing while inactive; the visibility always goes last.
    void updateTelegram(ChannelConfig& config, const std::string& name) const final;

    // "HIDDEN" or "PUBLIC"; notifies even when the word is the same.
    void setVisibility(const std::string& visibility);
    std::string getVisibility() const { return m_visibility; }

    void setActive(bool active) { m_active = active; }
    bool isActive() const { return m_active; }

    IfChannelPropertyChangeListener* getChangeListener() const { return m_change_listener; }

protected:
    void notifyChanged();

    bool m_active = true;
    std::string m_visibility;
    IfChannelPropertyChangeListener* m_change_listener = nullptr;
};

// Holds a Property as it came, of whatever type: what a restored channel
// carries until its typed class takes over, and what survives of settings
// the running code does not know.
class RawPropertyHolder : public PropertyBase {
public:
    explicit RawPropertyHolder(const Property& property);

    bool update(const Property& property) override;
    Property getProperty() const { return m_property; }

protected:
    void toTelegram(ChannelConfig& config, const std::string& name) const override;

private:
    Property m_property;
};

class StringProperty : public PropertyBase {
public:
    explicit StringProperty(const std::string& value = {});

    bool update(const Property& property) override;
    void setValue(const std::string& value);
    std::string getValue() const { return m_value; }

protected:
    void toTelegram(ChannelConfig& config, const std::string& name) const override;

    std::string m_value;
};

class EditableStringProperty : public StringProperty {
public:
    explicit EditableStringProperty(const std::string& value = {});
    // Starts from the defaults and takes the held value as update would.
    explicit EditableStringProperty(const RawPropertyHolder& holder);

    // With a pattern set, a value from the host must match it whole.
    bool update(const Property& property) override;

    // Stores and compiles the pattern (ECMAScript); a pattern that does not
    // compile leaves no expression, and then every value is refused. None of
    // these setters notifies.
    void setRegexPattern(const std::string& pattern);
    void setOptions(const std::vector<std::string>& options) { m_options = options; }
    void setFreeText(bool is_free_text) { m_is_free_text = is_free_text; }

    std::string getRegexPattern() const { return m_regex_pattern; }
    std::vector<std::string> getOptions() const { return m_options; }
    bool isFreeText() const { return m_is_free_text; }

protected:
    void toTelegram(ChannelConfig& config, const std::string& name) const override;

private:
    std::string m_regex_pattern;
    std::optional<std::regex> m_regex;
    std::vector<std::string> m_options;
    bool m_is_free_text = true;
};

class BooleanProperty : public PropertyBase {
public:
    explicit BooleanProperty(bool value);

    bool update(const Property& property) override;
    void setValue(bool value);
    bool getValue() const { return m_value; }

    // Offers false and true as options; does not notify.
    void setOfferOptions(bool offer_options) { m_offer_options = offer_options; }
    bool getOfferOptions() const { return m_offer_options; }

protected:
    void toTelegram(ChannelConfig& config, const std::string& name) const override;

private:
    bool m_value;
    bool m_offer_options = false;
};

// A number with a unit. `min` above `max` means no limits.
class EditableScalarProperty : public PropertyBase {
public:
    EditableScalarProperty(double value, const std::string& unit, double min, double max);
    // Starts from the defaults and takes the held value as update would.
    explicit EditableScalarProperty(const RawPropertyHolder& holder);

    // Takes a DoubleValue, or a ScalarValue of this unit; without a unit of
    // its own the property adopts the scalar's, even for a value the limits
    // then refuse.
    bool update(const Property& property) override;

    // Value and unit at once.
    void setValue(const Scalar& value);
    // Keeps the unit.
    void setValue(double value);
    // Does not clip the value.
    void setMinMax(double min, double max);
    // A suggested value in this property's unit; does not notify.
    void addOption(double option) { m_scalar_options.push_back(option); }
    // Suggestions as texts, each its own option constraint; does not notify.
    void setTextOptions(const std::vector<std::string>& options) { m_text_options = options; }

    double getValue() const { return m_value; }
    std::string getUnit() const { return m_unit; }
    Scalar getScalar() const { return Scalar(m_value, m_unit); }
    double getMin() const { return m_min; }
    double getMax() const { return m_max; }
    std::vector<double> getScalarOptions() const { return m_scalar_options; }
    std::vector<std::string> getTextOptions() const { return m_text_options; }

protected:
    void toTelegram(ChannelConfig& config, const std::string& name) const override;

private:
    bool hasLimits() const { return m_max >= m_min; }

    double m_value = 0.0;
    std::string m_unit;
    double m_min = 1.0;
    double m_max = 0.0;
    std::vector<double> m_scalar_options;
    std::vector<std::string> m_text_options;
};

// One host channel id, or none.
class EditableChannelIDProperty : public PropertyBase {
public:
    EditableChannelIDProperty() = default;
    explicit EditableChannelIDProperty(std::uint64_t value);

    bool update(const Property& property) override;
    void setValue(std::uint64_t value);
    std::optional<std::uint64_t> getValue() const { return m_value; }

protected:
    void toTelegram(ChannelConfig& config, const std::string& name) const override;

private:
    std::optional<std::uint64_t> m_value;
};

// A list of host channel ids, with the kind of channel the user may pick.
class EditableChannelIDListProperty : public PropertyBase {
public:
    enum ChannelType : std::uint8_t {
        CHANNEL_TYPE_ANY = 0,
        CHANNEL_TYPE_SYNC = 1,
        CHANNEL_TYPE_ASYNC = 2,
    };

    EditableChannelIDListProperty() = default;
    explicit EditableChannelIDListProperty(const std::vector<std::uint64_t>& value);

    bool update(const Property& property) override;
    void setValue(const std::vector<std::uint64_t>& value);
    // A ChannelType value.
    void setChannelType(std::uint8_t channel_type);
    void setMaxDimension(std::int32_t max_dimension);
    // Does not notify.
    void setMaxItems(std::uint32_t max_items) { m_max_items = max_items; }

    std::vector<std::uint64_t> getValue() const { return m_value; }
    ChannelType getChannelType() const { return m_channel_type; }
    std::int32_t getMaxDimension() const { return m_max_dimension; }
    std::uint32_t getMaxItems() const { return m_max_items; }

protected:
    void toTelegram(ChannelConfig& config, const std::string& name) const override;

private:
    std::vector<std::uint64_t> m_value;
    ChannelType m_channel_type = CHANNEL_TYPE_ANY;
    std::int32_t m_max_dimension = -1;
    std::uint32_t m_max_items = 0;
};

class RangeProperty : public PropertyBase {
public:
    explicit RangeProperty(const Range& value = {});
    // Starts from the defaults and takes the held value as update would.
    explicit RangeProperty(const RawPropertyHolder& holder);

    bool update(const Property& property) override;
    void setValue(const Range& value);
    Range getValue() const { return m_value; }

    // Ranges offered to the user, each its own option constraint; does not notify.
    void setOptions(const std::vector<Range>& options) { m_options = options; }
    std::vector<Range> getOptions() const { return m_options; }

protected:
    void toTelegram(ChannelConfig& config, const std::string& name) const override;

private:
    Range m_value;
    std::vector<Range> m_options;
};

} // namespace zlr::framework
