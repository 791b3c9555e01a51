#include "sim_software_channel_telegrams.h"
#include "zlrapi_register_software_channel_xml.h"
#include "zlrapi_software_channel_request_xml.h"
#include "zlrapi_software_channel_response_xml.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

std::string randomText(std::mt19937& random)
{
    static const char alphabet[] = "ab <>&\"'\t\nxyz\xc3\xa4";
    std::string text(random() % 12, ' ');
    for (char& c : text) {
        c = alphabet[random() % (sizeof alphabet - 1)];
    }
    return text;
}

std::string trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\n");
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

} // namespace

TEST(SoftwareChannelTelegrams, ExactTexts)
{
    zlr::RegisterSoftwareChannelTelegram registration;
    registration.m_service_name = "frequency_measurement";
    registration.m_display_name = "Frequency Measurement";
    registration.m_display_group = "Advanced Math";
    registration.m_analysis_capable = true;
    EXPECT_EQ(registration.generate(),
              R"(<?xml version="1.0"?><RegisterSoftwareChannel protocol_version="1.0"><ServiceName>frequency_measurement</ServiceName><DisplayName>Frequency Measurement</DisplayName><DisplayGroup>Advanced Math</DisplayGroup><AnalysisCapable>True</AnalysisCapable><AcquisitionCapable>True</AcquisitionCapable></RegisterSoftwareChannel>)");
    registration = {};
    registration.m_description = "a & b";
    registration.m_ui_item_name = "Item";
    EXPECT_EQ(registration.generate(),
              R"(<?xml version="1.0"?><RegisterSoftwareChannel protocol_version="1.0"><ServiceName/><DisplayName/><DisplayGroup/><AnalysisCapable>False</AnalysisCapable><AcquisitionCapable>True</AcquisitionCapable><Description>a &amp; b</Description><UIAdd><ItemName>Item</ItemName></UIAdd></RegisterSoftwareChannel>)");

    zlr::CreateSoftwareChannelResponseTelegram created;
    EXPECT_EQ(created.generate(),
              R"(<?xml version="1.0"?><CreateSoftwareChannelResponse protocol_version="1.0"/>)");
    created.m_message = "Select an input";
    created.m_created_channels = {0, 3, 4};
    created.m_show_details = true;
    created.m_details_channel = 3;
    EXPECT_EQ(created.generate(),
              R"(<?xml version="1.0"?><CreateSoftwareChannelResponse protocol_version="1.0"><Message>Select an input</Message><CreatedChannels><Channel channel_id="0"/><Channel channel_id="3" show_details="true"/><Channel channel_id="4"/></CreatedChannels></CreateSoftwareChannelResponse>)");

    zlr::QuerySoftwareChannelActionResponseTelegram query;
    EXPECT_EQ(query.generate(),
              R"(<?xml version="1.0"?><QuerySoftwareChannelActionResponse protocol_version="1.0"><Valid is_valid="false"/></QuerySoftwareChannelActionResponse>)");
    query.m_valid = true;
    query.m_channels = {8};
    EXPECT_EQ(query.generate(),
              R"(<?xml version="1.0"?><QuerySoftwareChannelActionResponse protocol_version="1.0"><Valid is_valid="true"/><Channels><Channel channel_id="8"/></Channels></QuerySoftwareChannelActionResponse>)");
}

TEST(SoftwareChannelTelegrams, RandomTelegramsReadBackThroughTheHost)
{
    std::mt19937 random(31);
    for (int round = 0; round < 200; ++round) {
        zlr::RegisterSoftwareChannelTelegram registration;
        registration.m_display_group = randomText(random);
        registration.m_service_name = randomText(random);
        registration.m_display_name = randomText(random);
        registration.m_description = randomText(random);
        registration.m_ui_item_name = randomText(random);
        registration.m_analysis_capable = random() & 1;
        registration.m_acquisition_capable = random() & 1;
        zlr::RegisterSoftwareChannelTelegram registration_read;
        ASSERT_TRUE(zelvar_sim::readRegisterSoftwareChannel(registration.generate(), registration_read));
        EXPECT_EQ(registration_read.m_display_group, trimmed(registration.m_display_group));
        EXPECT_EQ(registration_read.m_service_name, trimmed(registration.m_service_name));
        EXPECT_EQ(registration_read.m_display_name, trimmed(registration.m_display_name));
        EXPECT_EQ(registration_read.m_description, trimmed(registration.m_description));
        EXPECT_EQ(registration_read.m_ui_item_name, trimmed(registration.m_ui_item_name));
        EXPECT_EQ(registration_read.m_analysis_capable, registration.m_analysis_capable);
        EXPECT_EQ(registration_read.m_acquisition_capable, registration.m_acquisition_capable);

        zlr::CreateSoftwareChannelResponseTelegram created;
        created.m_message = trimmed(randomText(random));
        created.m_created_channels.resize(random() % 5);
        for (std::size_t i = 0; i < created.m_created_channels.size(); ++i) {
            created.m_created_channels[i] = static_cast<std::uint32_t>(i * 7 + random() % 7);
        }
        created.m_show_details = !created.m_created_channels.empty() && (random() & 1);
        if (created.m_show_details) {
            created.m_details_channel = created.m_created_channels[random() % created.m_created_channels.size()];
        }
        zlr::CreateSoftwareChannelResponseTelegram created_read;
        ASSERT_TRUE(zelvar_sim::readCreateSoftwareChannelResponse(created.generate(), created_read));
        EXPECT_EQ(created_read.m_message, created.m_message);
        EXPECT_EQ(created_read.m_created_channels, created.m_created_channels);
        EXPECT_EQ(created_read.m_show_details, created.m_show_details);
        EXPECT_EQ(created_read.m_details_channel, created.m_details_channel);

        zlr::QuerySoftwareChannelActionResponseTelegram query;
        query.m_valid = random() & 1;
        query.m_channels.resize(random() % 5);
        for (auto& id : query.m_channels) {
            id = (std::uint64_t{random()} << 32) | random();
        }
        zlr::QuerySoftwareChannelActionResponseTelegram query_read;
        ASSERT_TRUE(zelvar_sim::readQuerySoftwareChannelActionResponse(query.generate(), query_read));
        EXPECT_EQ(query_read.m_valid, query.m_valid);
        EXPECT_EQ(query_read.m_channels, query.m_channels);

        // The host's question reads back through the kit's reader.
        std::vector<zlr::InputChannelFormat> inputs(random() % 4);
        for (auto& input : inputs) {
            input.m_channel_id = random();
            auto next = [&random](std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); };
            input.m_dataformat = {1 + next(19), next(9), static_cast<std::uint32_t>(random()), next(4), next(3)};
        }
        const std::string question = zelvar_sim::writeQuerySoftwareChannelAction(inputs);
        zlr::QuerySoftwareChannelActionTelegram question_read;
        ASSERT_TRUE(question_read.parse(question.c_str()));
        EXPECT_EQ(question_read.m_input_channels, inputs) << question;
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
