// What the kit writes, the host reads; what the host saves, the kit reads
// back the same: an UpdateConfig with every kind of value and constraint
// goes from the kit's writer through the host's readers into the host's
// record, and the kit's reader of that record gives the same settings.
#include "sim_host.h"
#include "sim_host_model.h"
#include "xpugixml.h"
#include "zlrapi_update_plugin_channels_xml.h"
#include "zlrbase_messages.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// One canonical text of a property, so that structured values compare deeply.
std::string textOf(const zlr::Property& property)
{
    pugi::xml_document document;
    property.writeTo(document);
    return xpugi::to_xml(document, false);
}

std::string textOf(const zlr::Constraint& constraint)
{
    pugi::xml_document document;
    zlr::writeConstraint(document.append_child("Constraints"), constraint);
    return xpugi::to_xml(document, false);
}

TEST(KitRoundTrip, SettingsWithEveryConstraintSurviveTheHostsRecord)
{
    auto value = [](auto&& set) {
        zlr::Property property("value");
        set(property);
        return property;
    };
    zlr::ChannelConfig config;
    config.m_local_id = 3;
    config.addProperty("Text", zlr::Property("Text", "\"quoted\" and <marked>"));
    config.addConstraint("Text", zlr::Constraint::freeText());
    config.addConstraint("Text", zlr::Constraint::regularExpression("[a-z]+"));
    config.addConstraint("Text", zlr::Constraint::options({zlr::Property("o", "a")}));
    config.addConstraint("Text", zlr::Constraint::visibility("HIDDEN"));
    config.addProperty("Overlap", value([](auto& p) { p.setValue(zlr::Scalar(0.1, "%")); }));
    config.addConstraint("Overlap", zlr::Constraint::range(value([](auto& p) { p.setValue(0.0); }),
                                                           value([](auto& p) { p.setValue(90.0); })));
    config.addConstraint("Overlap",
                         zlr::Constraint::options({value([](auto& p) { p.setValue(zlr::Scalar(1e-300, "%")); }),
                                                   value([](auto& p) { p.setValue(zlr::Scalar(-0.0, "%")); })}));
    config.addProperty("Limits", value([](auto& p) { p.setValue(zlr::Range(-1.5, 2.5, "Hz", "kHz")); }));
    config.addConstraint("Limits",
                         zlr::Constraint::range(value([](auto& p) { p.setValue(zlr::Scalar(0, "Hz")); }),
                                                value([](auto& p) { p.setValue(zlr::Scalar(5, "kHz")); })));
    config.addProperty("Used", zlr::Property("Used", true));
    config.addConstraint("Used", zlr::Constraint::options({zlr::Property("o", false), zlr::Property("o", true)}));
    config.addProperty("Inputs", value([](auto& p) {
                           p.setChannelIDList(zlr::ValueList<std::uint64_t>{{7, 18446744073709551614u}});
                       }));
    config.addConstraint("Inputs", zlr::Constraint::channelIds(0, -1, "SYNC"));
    config.addProperty("Mode", zlr::Property("Mode", "Fast", "Modes"));
    config.addProperty("Count", zlr::Property("Count", std::int32_t{-42}));
    zlr::Constraint::FilePath file;
    file.m_file_type = "OPEN";
    file.m_dialog_title = "Pick";
    file.m_name_filters = {"*.wav", "*.flac"};
    file.m_multi_select = true;
    config.addProperty("File", zlr::Property("File", "/tmp/a b"));
    config.addConstraint("File", zlr::Constraint::filePath(file));

    zelvar_sim::SimHost host;
    zelvar_sim::HostModel model(host);
    zlr::UpdatePluginChannelsTelegram tree;
    tree.m_channels.resize(1);
    tree.m_channels[0].m_local_id = 3;
    const std::string tree_text = tree.generate();
    ASSERT_EQ(host.messageSyncData(zlr::HOST_UPDATE_CHANNELS, 0, tree_text.c_str(),
                                   tree_text.size() + 1, nullptr),
              0u);
    zlr::UpdateConfigTelegram update;
    update.m_channels.push_back(config);
    const std::string update_text = update.generate();
    ASSERT_EQ(host.messageSyncData(zlr::HOST_UPDATE_CONFIG, 0, update_text.c_str(),
                                   update_text.size() + 1, nullptr),
              0u)
        << (host.faults().empty() ? "" : host.faults()[0].reason);

    zlr::UpdatePluginChannelsTelegram saved;
    const std::string record = model.savedConfiguration();
    ASSERT_TRUE(saved.parse(record.c_str(), record.size() + 1)) << record;
    ASSERT_EQ(saved.m_channels.size(), 1u);
    const zlr::PluginChannelInfo& back = saved.m_channels[0];
    ASSERT_EQ(back.m_properties.size(), config.m_properties.size());
    for (std::size_t i = 0; i < config.m_properties.size(); ++i) {
        EXPECT_EQ(textOf(back.m_properties[i]), textOf(config.m_properties[i]));
    }
    // The kit's reader keeps an empty entry for a property without constraints.
    std::size_t constrained = 0;
    for (const auto& entry : back.m_constraints) {
        constrained += !entry.second.empty();
    }
    EXPECT_EQ(constrained, config.m_constraints.size());
    for (const auto& [name, constraints] : config.m_constraints) {
        SCOPED_TRACE(name);
        ASSERT_EQ(back.m_constraints.count(name), 1u);
        const auto& read = back.m_constraints.at(name);
        ASSERT_EQ(read.size(), constraints.size());
        for (std::size_t i = 0; i < constraints.size(); ++i) {
            EXPECT_EQ(textOf(read[i]), textOf(constraints[i]));
        }
    }
}

} // namespace
