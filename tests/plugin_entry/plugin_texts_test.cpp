// The texts the host reads from the plug-in: the manifest byte for byte, the
// two catalogues checked against the settings they translate.
#include "plugin_loader.h"
#include "sim_host.h"
#include "sim_software_channel_telegrams.h"
#include "sim_values.h"
#include "zlrapi_update_config_xml.h"
#include "zlrbase_messages.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace {

const char* const PLUGIN = FREQUENCY_MEASUREMENT_PLUGIN;

const char* const EXPECTED_MANIFEST = R"(<?xml version="1.0"?>
<ZelvarPlugin name="FREQUENCY_MEASUREMENT" version="1.0" uuid="7E3A91C2-4D06-4B8F-A1C5-2F60D8B3E947">
  <Info name="Frequency Measurement">
    <Vendor name="KORVANE"/>
    <Description>The frequency measurement uses an FFT-based algorithm to determine the dominant frequency of one or more input signals</Description>
  </Info>
  <Host minimum_version="5.6"/>
</ZelvarPlugin>
)";

TEST(PluginTexts, ManifestAndNameAreExact)
{
    zelvar_sim::PluginLibrary library(PLUGIN);
    EXPECT_EQ(library.manifest(), EXPECTED_MANIFEST);
    EXPECT_EQ(library.name(), "FREQUENCY_MEASUREMENT");
    EXPECT_EQ(library.manifestInfo().minimum_host_version, "5.6");
}

// The sources of a catalogue, each with its translation.
std::map<std::string, std::string> translations(const std::string& text, const char* language)
{
    pugi::xml_document document;
    EXPECT_TRUE(document.load_string(text.c_str())) << text;
    const pugi::xml_node ts = document.child("TS");
    EXPECT_STREQ(ts.attribute("language").value(), language);
    EXPECT_STREQ(ts.attribute("sourcelanguage").value(), "en");
    std::map<std::string, std::string> entries;
    for (const pugi::xml_node message : ts.child("context").children("message")) {
        const std::string translation = message.child_value("translation");
        EXPECT_FALSE(translation.empty()) << message.child_value("source");
        EXPECT_TRUE(entries.emplace(message.child_value("source"), translation).second)
            << "twice: " << message.child_value("source");
    }
    return entries;
}

std::set<std::string> keysOf(const std::map<std::string, std::string>& catalogue)
{
    std::set<std::string> keys;
    for (const auto& [key, text] : catalogue) keys.insert(key);
    return keys;
}

// Both catalogues reach the host, English first, as XML values, and
// translate the same keys, all of them the plug-in's own.
TEST(PluginTexts, CataloguesTranslateTheSameKeysInBothLanguages)
{
    zelvar_sim::SimHost host;
    host.setIdentity("Zelvar", "5.6");
    zelvar_sim::PluginLibrary library(PLUGIN);
    zelvar_sim::PluginSession session(library, host);
    const auto sent = host.messagesWithId(zlr::HOST_ADD_TRANSLATION);
    ASSERT_EQ(sent.size(), 2u);
    for (const auto& message : sent) {
        EXPECT_EQ(message.kind, zelvar_sim::CallKind::sync);
        EXPECT_EQ(message.key, 0u);
        EXPECT_EQ(message.value_type, zlr::VALUE_TYPE_XML);
        EXPECT_TRUE(message.wants_result);
    }
    const auto english = keysOf(translations(sent[0].text, "en"));
    EXPECT_EQ(english, keysOf(translations(sent[1].text, "de")));
    EXPECT_FALSE(english.empty());
    for (const std::string& key : english) {
        EXPECT_EQ(key.rfind(library.name() + "/", 0), 0u) << key;
    }
    // The German texts arrive as UTF-8, as the catalogue says.
    EXPECT_NE(sent[1].text.find("encoding=\"UTF-8\""), std::string::npos);
    EXPECT_TRUE(std::any_of(sent[1].text.begin(), sent[1].text.end(), [](char c) { return c & 0x80; }));
}

// Every setting that a new channel shows a person has its text.
TEST(PluginTexts, EverySettingOfAChannelIsTranslated)
{
    zelvar_sim::SimHost host;
    host.setIdentity("Zelvar", "5.6");
    zelvar_sim::PluginLibrary library(PLUGIN);
    zelvar_sim::PluginSession session(library, host);
    const auto english =
        keysOf(translations(host.messagesWithId(zlr::HOST_ADD_TRANSLATION).at(0).text, "en"));
    zelvar_sim::XmlValue request(host.ledger(),
                                 zelvar_sim::writeCreateSoftwareChannel("frequency_measurement", {}, {}));
    if (session.send(zlr::PLUGIN_SOFTWARE_CHANNEL_CREATE, 0, &request) == zlr::RESULT_NOT_HANDLED) {
        GTEST_SKIP() << "the plug-in makes no channels yet";
    }
    std::set<std::string> settings;
    for (const auto& message : host.messagesWithId(zlr::HOST_UPDATE_CONFIG)) {
        zlr::UpdateConfigTelegram telegram;
        ASSERT_TRUE(telegram.parse(message.text.data(), message.text.size()));
        // The settings a person sees are the public ones; the framework's
        // own (the instance key, "Used") have no text of the plug-in.
        for (const auto& channel : telegram.m_channels) {
            for (const auto& [name, constraints] : channel.m_constraints) {
                for (const auto& constraint : constraints) {
                    if (constraint.getKind() == zlr::Constraint::VISIBILITY &&
                        constraint.getVisibility() == "PUBLIC") {
                        settings.insert(name);
                    }
                }
            }
        }
    }
    EXPECT_FALSE(settings.empty());
    for (const std::string& name : settings) {
        EXPECT_TRUE(english.count(name)) << name;
    }
}

} // namespace
