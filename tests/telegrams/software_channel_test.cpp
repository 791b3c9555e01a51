#include "sim_software_channel_telegrams.h"
#include "zlrapi_register_software_channel_xml.h"
#include "zlrapi_software_channel_request_xml.h"
#include "zlrapi_software_channel_response_xml.h"

#include <gtest/gtest.h>

#include <string>

TEST(SoftwareChannelTelegrams, ExactTexts)
{
    using Registration = zlr::RegisterSoftwareChannelTelegram;
    using Created = zlr::CreateSoftwareChannelResponseTelegram;
    using Query = zlr::QuerySoftwareChannelActionResponseTelegram;
    const std::pair<std::string, const char*> cases[] = {
        {Registration{"Advanced Math", "frequency_measurement", "Frequency Measurement", "", "", true, true}.generate(),
         R"(<?xml version="1.0"?><RegisterSoftwareChannel protocol_version="1.0"><ServiceName>frequency_measurement</ServiceName><DisplayName>Frequency Measurement</DisplayName><DisplayGroup>Advanced Math</DisplayGroup><AnalysisCapable>True</AnalysisCapable><AcquisitionCapable>True</AcquisitionCapable></RegisterSoftwareChannel>)"},
        {Registration{"", "", "", "a & b", "Item", false, true}.generate(),
         R"(<?xml version="1.0"?><RegisterSoftwareChannel protocol_version="1.0"><ServiceName/><DisplayName/><DisplayGroup/><AnalysisCapable>False</AnalysisCapable><AcquisitionCapable>True</AcquisitionCapable><Description>a &amp; b</Description><UIAdd><ItemName>Item</ItemName></UIAdd></RegisterSoftwareChannel>)"},
        {Created{}.generate(), R"(<?xml version="1.0"?><CreateSoftwareChannelResponse protocol_version="1.0"/>)"},
        {Created{"Select an input", true, 3, {0, 3, 4}}.generate(),
         R"(<?xml version="1.0"?><CreateSoftwareChannelResponse protocol_version="1.0"><Message>Select an input</Message><CreatedChannels><Channel channel_id="0"/><Channel channel_id="3" show_details="true"/><Channel channel_id="4"/></CreatedChannels></CreateSoftwareChannelResponse>)"},
        {Query{}.generate(),
         R"(<?xml version="1.0"?><QuerySoftwareChannelActionResponse protocol_version="1.0"><Valid is_valid="false"/></QuerySoftwareChannelActionResponse>)"},
        {Query{{8}, true}.generate(),
         R"(<?xml version="1.0"?><QuerySoftwareChannelActionResponse protocol_version="1.0"><Valid is_valid="true"/><Channels><Channel channel_id="8"/></Channels></QuerySoftwareChannelActionResponse>)"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(text, expected);
    }
}

// What the kit writes, the host reads back whole, markup characters and
// multi-byte texts included.
TEST(SoftwareChannelTelegrams, HostReadsBackWhatTheKitWrites)
{
    for (const bool flag : {false, true}) {
        const zlr::RegisterSoftwareChannelTelegram registration{
            "Advanced <Math>", "frequency_measurement", "Frequency & \"more\"", flag ? "\xc3\xa4'" : "",
            flag ? "Item" : "", flag, !flag};
        zlr::RegisterSoftwareChannelTelegram registration_read;
        ASSERT_TRUE(zelvar_sim::readRegisterSoftwareChannel(registration.generate(), registration_read));
        EXPECT_EQ(registration_read, registration);

        zlr::CreateSoftwareChannelResponseTelegram created{flag ? "Select <an> input" : "", flag, flag ? 7u : 0u, {0, 7, 8}};
        zlr::CreateSoftwareChannelResponseTelegram created_read;
        ASSERT_TRUE(zelvar_sim::readCreateSoftwareChannelResponse(created.generate(), created_read));
        EXPECT_EQ(created_read, created);

        const zlr::QuerySoftwareChannelActionResponseTelegram query{{18446744073709551615u, 3}, flag};
        zlr::QuerySoftwareChannelActionResponseTelegram query_read;
        ASSERT_TRUE(zelvar_sim::readQuerySoftwareChannelActionResponse(query.generate(), query_read));
        EXPECT_EQ(query_read, query);
    }
}

TEST(SoftwareChannelTelegrams, QueryReaderTable)
{
    const std::string format = R"(<DataFormat sample_occurrence="SYNC" sample_format="double"/>)";
    struct Case {
        std::string text;
        bool answer;
        std::vector<std::uint32_t> ids;
    };
    const Case cases[] = {
        {"<QuerySoftwareChannelAction/>", true, {}},
        {R"(<QuerySoftwareChannelAction protocol_version="2.0"/>)", false, {}},
        {R"(<QuerySoftwareChannelAction protocol_version="1"/>)", true, {}},
        {"<CreateSoftwareChannel/>", false, {}},
        {"<QuerySoftwareChannelAction><Channels><Channel channel_id=\"4\">" + format +
             "</Channel><Channel channel_id=\"5\"/><Channel channel_id=\"6\">" + format +
             "</Channel></Channels></QuerySoftwareChannelAction>",
         true, {4, 6}},
        // A bad entry ends the list; the ones before it stay.
        {"<QuerySoftwareChannelAction><Channels><Channel channel_id=\"4\">" + format +
             "</Channel><Channel/><Channel channel_id=\"6\">" + format +
             "</Channel></Channels></QuerySoftwareChannelAction>",
         true, {4}},
        // An id in another base is not found again by the selection.
        {"<QuerySoftwareChannelAction><Channels><Channel channel_id=\"0x4\">" + format +
             "</Channel></Channels></QuerySoftwareChannelAction>",
         true, {}},
        {"<QuerySoftwareChannelAction><Channels><Channel channel_id=\"4\">" + format, false, {}},
    };
    for (const Case& c : cases) {
        zlr::QuerySoftwareChannelActionTelegram telegram;
        telegram.m_input_channels.resize(3);
        EXPECT_EQ(telegram.parse(c.text.c_str()), c.answer) << c.text;
        std::vector<std::uint32_t> ids;
        for (const auto& input : telegram.m_input_channels) {
            ids.push_back(input.m_channel_id);
            EXPECT_EQ(input.m_dataformat, (zlr::DataFormat{13, 0, 1, 0, 0}));
        }
        EXPECT_EQ(ids, c.ids) << c.text;
    }
}
