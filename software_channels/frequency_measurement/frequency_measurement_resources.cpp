#include "frequency_measurement_resources.h"

namespace frequency_measurement {

const zlr::PluginInterfaceId PLUGIN_INTERFACE_ID = {
    {0x7A, 0x51, 0xC8, 0x2E, 0x90, 0x3D, 0x46, 0x1B, 0x8E, 0x27, 0xD4, 0x6F, 0x03, 0xB9, 0x5C, 0xA1}};

const char PLUGIN_NAME[] = "FREQUENCY_MEASUREMENT";

const char PLUGIN_MANIFEST[] =
    "<?xml version=\"1.0\"?>\n"
    "<ZelvarPlugin name=\"FREQUENCY_MEASUREMENT\" version=\"1.0\" "
    "uuid=\"7E3A91C2-4D06-4B8F-A1C5-2F60D8B3E947\">\n"
    "  <Info name=\"Frequency Measurement\">\n"
    "    <Vendor name=\"KORVANE\"/>\n"
    "    <Description>The frequency measurement uses an FFT-based algorithm to determine the "
    "dominant frequency of one or more input signals</Description>\n"
    "  </Info>\n"
    "  <Host minimum_version=\"5.6\"/>\n"
    "</ZelvarPlugin>\n";

const char TRANSLATIONS_EN[] =
    "<?xml version=\"1.0\"?>\n"
    "<TS version=\"2.1\" language=\"en\" sourcelanguage=\"en\">\n"
    "    <context>\n"
    "        <name>ConfigKeys</name>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/InputChannels</source>"
    "<translation>Input channels</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/WindowOverlap</source>"
    "<translation>Window overlap</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/WindowSize</source>"
    "<translation>Window size</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/WindowLength</source>"
    "<translation>Window duration</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/MinFrequency</source>"
    "<translation>Min. frequency</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/MaxFrequency</source>"
    "<translation>Max. frequency</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/StatusText</source>"
    "<translation>Status</translation></message>\n"
    "    </context>\n"
    "</TS>\n";

// UTF-8, written as escapes so the bytes do not depend on the editor:
// \xC3\xA4 is a-umlaut, \xC3\xBC u-umlaut, \xC3\xB6 o-umlaut, \xC3\x9F sharp s.
const char TRANSLATIONS_DE[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
    "<TS version=\"2.1\" language=\"de\" sourcelanguage=\"en\">\n"
    "    <context>\n"
    "        <name>ConfigKeys</name>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/InputChannels</source>"
    "<translation>Eingangskan\xC3\xA4le</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/WindowOverlap</source>"
    "<translation>Fenster\xC3\xBC" "berlappung</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/WindowSize</source>"
    "<translation>Fenstergr\xC3\xB6\xC3\x9F" "e</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/WindowLength</source>"
    "<translation>Fensterdauer</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/MinFrequency</source>"
    "<translation>Min. Frequenz</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/MaxFrequency</source>"
    "<translation>Max. Frequenz</translation></message>\n"
    "        <message><source>FREQUENCY_MEASUREMENT/StatusText</source>"
    "<translation>Status</translation></message>\n"
    "    </context>\n"
    "</TS>\n";

} // namespace frequency_measurement
