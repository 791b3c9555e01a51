#include "sim_data_set_readers.h"
#include "sim_data_set_writers.h"
#include "zlrapi_data_request_xml.h"
#include "zlrapi_data_set_xml.h"
#include "zlrapi_process_window_xml.h"

#include <gtest/gtest.h>

#include <string>

TEST(DataRequests, ExactTexts)
{
    using zlr::DataTransferRequestTelegram;
    const auto stream = static_cast<zlr::StreamType>(5); // past the table
    const std::pair<std::string, const char*> cases[] = {
        {zlr::DataRegionsRequestTelegram{7, 0.0, 0.0, false}.generate(),
         R"(<?xml version="1.0"?><DataRegionsRequest data_set_key="7"/>)"},
        {zlr::DataRegionsRequestTelegram{7, 0.1, 2.0, true}.generate(),
         R"(<?xml version="1.0"?><DataRegionsRequest data_set_key="7"><Window start="0.10000000000000001" end="2"/></DataRegionsRequest>)"},
        {DataTransferRequestTelegram(3, 1.0 / 3, 1e300).generate(),
         R"(<?xml version="1.0"?><DataTransferRequest data_set_key="3"><Window start="0.33333333333333331" end="1.0000000000000001e+300"/></DataTransferRequest>)"},
        {DataTransferRequestTelegram(3).generate(),
         R"(<?xml version="1.0"?><DataTransferRequest data_set_key="3"><DataStream/></DataTransferRequest>)"},
        {DataTransferRequestTelegram(18446744073709551615u, -2.5).generate(),
         R"(<?xml version="1.0"?><DataTransferRequest data_set_key="18446744073709551615"><SingleValue timestamp="-2.5"/></DataTransferRequest>)"},
        {zlr::StreamRequestTelegram{9}.generate(),
         R"(<?xml version="1.0"?><DataTransferRequest data_set_key="9"><Stream stream_type="RAW"/></DataTransferRequest>)"},
        // As the instance starts its stream.
        {zlr::StreamRequestTelegram{9, 0.0, false, 0.01, true, true, true, zlr::STREAM_TYPE_SCALED}.generate(),
         R"(<?xml version="1.0"?><DataTransferRequest data_set_key="9"><Stream block_duration="0.01" ignore_regions="true" stream_type="SCALED"/></DataTransferRequest>)"},
        {zlr::StreamRequestTelegram{9, 4.0, true, 0.0, false, false, true, stream}.generate(),
         R"(<?xml version="1.0"?><DataTransferRequest data_set_key="9"><Stream start="4" ignore_regions="false" stream_type="Unknown StreamType"/></DataTransferRequest>)"},
        {zlr::StreamStopTelegram{9}.generate(), R"(<?xml version="1.0"?><DataTransferRequest data_set_key="9"/>)"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(text, expected);
    }
}

// What the kit writes, the host reads back whole; the doubles need all
// seventeen digits.
TEST(DataRequests, HostReadsBackWhatTheKitWrites)
{
    const double a = 1.0 / 3, b = -1e300;
    zelvar_sim::DataTransferRequest read;
    ASSERT_TRUE(zelvar_sim::readDataTransferRequest(zlr::DataTransferRequestTelegram(7, a, b).generate(), read));
    EXPECT_EQ(read.m_data_set_key, 7u);
    EXPECT_EQ(read.m_window, std::make_pair(a, b));
    EXPECT_FALSE(read.m_single_value || read.m_data_stream || read.m_stream);
    ASSERT_TRUE(zelvar_sim::readDataTransferRequest(zlr::DataTransferRequestTelegram(7, b).generate(), read));
    EXPECT_EQ(read.m_single_value, b);
    EXPECT_FALSE(read.m_window || read.m_data_stream || read.m_stream);
    ASSERT_TRUE(zelvar_sim::readDataTransferRequest(zlr::DataTransferRequestTelegram(7).generate(), read));
    EXPECT_TRUE(read.m_data_stream);
    EXPECT_FALSE(read.m_window || read.m_single_value || read.m_stream);
    ASSERT_TRUE(zelvar_sim::readDataTransferRequest(zlr::StreamStopTelegram{7}.generate(), read));
    EXPECT_FALSE(read.m_window || read.m_single_value || read.m_data_stream || read.m_stream);

    for (const bool with_fields : {false, true}) {
        zlr::StreamRequestTelegram stream{18446744073709551615u, 0.0, with_fields, 0.0, with_fields,
                                          with_fields, with_fields, with_fields ? zlr::STREAM_TYPE_SCALED : zlr::STREAM_TYPE_RAW};
        if (with_fields) {
            stream.m_start = a;
            stream.m_block_duration = 0.1;
        }
        ASSERT_TRUE(zelvar_sim::readDataTransferRequest(stream.generate(), read));
        EXPECT_EQ(read.m_stream, stream);

        zlr::DataRegionsRequestTelegram regions{9, with_fields ? a : 0.0, with_fields ? b : 0.0, with_fields};
        zlr::DataRegionsRequestTelegram regions_read;
        ASSERT_TRUE(zelvar_sim::readDataRegionsRequest(regions.generate(), regions_read));
        EXPECT_EQ(regions_read, regions);
    }
}

TEST(DataSets, ExactTextsAndFallbacks)
{
    zlr::RegisterDataSetTelegram data_set;
    data_set.m_data_set_key = 4;
    data_set.m_channels = {12, 7};
    data_set.m_type = zlr::DATA_SET_TYPE_RELAXED;
    EXPECT_EQ(data_set.generate(),
              R"(<?xml version="1.0"?><RegisterDataSet protocol_version="1.0" data_set_key="4" type="RELAXED" mode="NORMAL" policy="Push"><Channels><Channel channel_id="12"/><Channel channel_id="7"/></Channels></RegisterDataSet>)");
    data_set.m_channels.clear();
    data_set.m_type = static_cast<zlr::DataSetType>(2);
    data_set.m_mode = static_cast<zlr::DataSetMode>(4);
    data_set.m_policy = static_cast<zlr::StreamPolicy>(2);
    EXPECT_EQ(data_set.generate(),
              R"(<?xml version="1.0"?><RegisterDataSet protocol_version="1.0" data_set_key="4" type="Unknown DataSetMode" mode="Unknown DataSetMode" policy="Unknown StreamPolicy"><Channels/></RegisterDataSet>)");
    // The host refuses the fallback texts.
    zlr::RegisterDataSetTelegram read;
    EXPECT_FALSE(zelvar_sim::readRegisterDataSet(data_set.generate(), read));

    zlr::AcquisitionTaskAddTelegram task;
    task.m_acquisition_task_key = 0;
    task.m_input_channels = {5};
    task.m_output_channels = {0, 1};
    task.m_block_duration = 0.1;
    EXPECT_EQ(task.generate(),
              R"(<?xml version="1.0"?><AcquisitionTaskAdd protocol_version="1.0" acquisition_task_key="0" block_duration="0.10000000000000001"><InputChannels><Channel channel_id="5"/></InputChannels><OutputChannels><Channel channel_id="0"/><Channel channel_id="1"/></OutputChannels></AcquisitionTaskAdd>)");
}

TEST(DataSets, HostReadsBackWhatTheKitWrites)
{
    // Every mode, both types and both policies.
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        const zlr::RegisterDataSetTelegram data_set{
            18446744073709551615u - mode, {12, 0, 7}, static_cast<zlr::DataSetType>(mode % 2),
            static_cast<zlr::DataSetMode>(mode), static_cast<zlr::StreamPolicy>(mode / 2)};
        zlr::RegisterDataSetTelegram data_set_read;
        ASSERT_TRUE(zelvar_sim::readRegisterDataSet(data_set.generate(), data_set_read));
        EXPECT_EQ(data_set_read, data_set);
    }

    const zlr::AcquisitionTaskAddTelegram task{5, {1, 2}, {18446744073709551615u}, 1.0 / 3};
    zlr::AcquisitionTaskAddTelegram task_read;
    ASSERT_TRUE(zelvar_sim::readAcquisitionTaskAdd(task.generate(), task_read));
    EXPECT_EQ(task_read, task);
}

TEST(ProcessWindow, ReaderTable)
{
    struct Case {
        std::string text;
        bool answer;
        zlr::Timestamp start;
        zlr::Timestamp end;
    };
    const Case cases[] = {
        {zelvar_sim::writeProcessWindow({10, 100.0}, {20, 100.0}), true, {10, 100.0}, {20, 100.0}},
        {R"(<Any><Start ticks="1" frequency="2"/></Any>)", true, {1, 2.0}, {}},
        {R"(<Any protocol_version="1"><End ticks="0x10" frequency="2"/></Any>)", true, {}, {16, 2.0}},
        {R"(<Any protocol_version="2.0"><Start ticks="1" frequency="2"/></Any>)", false, {}, {}},
        {R"(<Any><Start ticks="1" frequency="x"/><End ticks="3" frequency="4"/></Any>)", false, {1, -1.0}, {3, 4.0}},
        {R"(<Any><Start)", false, {}, {}},
    };
    for (const Case& c : cases) {
        zlr::ProcessWindowTelegram telegram;
        telegram.m_start = {5, 5.0};
        EXPECT_EQ(telegram.parse(c.text.data(), c.text.size()), c.answer) << c.text;
        EXPECT_EQ(telegram.m_start, c.start) << c.text;
        EXPECT_EQ(telegram.m_end, c.end) << c.text;
    }
}
