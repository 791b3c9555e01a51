// The texts the host reads from the plug-in, byte for byte: the manifest
// from its export, the two catalogues as the plug-in hands them over.
#include "plugin_loader.h"
#include "sim_host.h"
#include "zlrbase_messages.h"

#include <gtest/gtest.h>

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

const char* const EXPECTED_ENGLISH = R"(<?xml version="1.0"?>
<TS version="2.1" language="en" sourcelanguage="en">
    <context>
        <name>ConfigKeys</name>
        <message><source>FREQUENCY_MEASUREMENT/InputChannels</source><translation>Input channels</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/WindowOverlap</source><translation>Window overlap</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/WindowSize</source><translation>Window size</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/WindowLength</source><translation>Window duration</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/MinFrequency</source><translation>Min. frequency</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/MaxFrequency</source><translation>Max. frequency</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/StatusText</source><translation>Status</translation></message>
    </context>
</TS>
)";

// This file is UTF-8; the umlauts below must reach the host as those bytes.
const char* const EXPECTED_GERMAN = R"(<?xml version="1.0" encoding="UTF-8" ?>
<TS version="2.1" language="de" sourcelanguage="en">
    <context>
        <name>ConfigKeys</name>
        <message><source>FREQUENCY_MEASUREMENT/InputChannels</source><translation>Eingangskanäle</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/WindowOverlap</source><translation>Fensterüberlappung</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/WindowSize</source><translation>Fenstergröße</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/WindowLength</source><translation>Fensterdauer</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/MinFrequency</source><translation>Min. Frequenz</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/MaxFrequency</source><translation>Max. Frequenz</translation></message>
        <message><source>FREQUENCY_MEASUREMENT/StatusText</source><translation>Status</translation></message>
    </context>
</TS>
)";

TEST(PluginTexts, ManifestAndNameAreExact)
{
    zelvar_sim::PluginLibrary library(PLUGIN);
    EXPECT_EQ(library.manifest(), EXPECTED_MANIFEST);
    EXPECT_EQ(library.name(), "FREQUENCY_MEASUREMENT");
    EXPECT_EQ(library.manifestInfo().minimum_host_version, "5.6");
}

TEST(PluginTexts, CataloguesGoToTheHostEnglishFirstThenGerman)
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
    EXPECT_EQ(sent[0].text, EXPECTED_ENGLISH);
    EXPECT_EQ(sent[1].text, EXPECTED_GERMAN);
    EXPECT_NE(sent[1].text.find("Fenstergr\xC3\xB6\xC3\x9F" "e"), std::string::npos);
}

} // namespace
