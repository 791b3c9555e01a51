// What the host refuses: each refusal answers its code and leaves one fault
// that names the reason; what fits is taken without a fault.
#include "plugin_side.h"
#include "sim_acquisition.h"
#include "zlrapi_data_request_xml.h"
#include "zlrapi_data_set_xml.h"
#include "zlrapi_utils.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace zelvar_sim;
using host_data_test::PluginSide;

struct Bench {
    SimHost host;
    Acquisition acquisition{host};
    PluginSide side{host};
};

std::uint64_t sendXml(Bench& bench, std::uint32_t id, const std::string& text)
{
    zlr::IfValue* result = nullptr;
    const std::uint64_t code =
        zlr::sendSyncXmlMessage(&bench.host, id, 0, text.c_str(), text.size() + 1, &result);
    if (result) {
        result->release();
    }
    return code;
}

std::uint64_t addTask(Bench& bench, std::uint64_t key, std::vector<std::uint64_t> inputs,
                      std::vector<std::uint64_t> outputs)
{
    zlr::AcquisitionTaskAddTelegram telegram;
    telegram.m_acquisition_task_key = key;
    telegram.m_input_channels = std::move(inputs);
    telegram.m_output_channels = std::move(outputs);
    return sendXml(bench, zlr::HOST_ADD_TASK, telegram.generate());
}

std::uint64_t writeBytes(Bench& bench, std::size_t size)
{
    const std::vector<unsigned char> bytes(size, 0x11);
    return bench.host.messageSyncData(zlr::HOST_WRITE_SAMPLES, 3, bytes.data(), bytes.size(),
                                      nullptr);
}

struct RefusalCase {
    const char* name;
    std::function<std::uint64_t(Bench&)> act;
    std::uint64_t answer;
    std::uint32_t fault_message; // 0: no fault expected
    const char* reason;
};

const RefusalCase CASES[] = {
    {"task that fits", [](Bench& b) { return addTask(b, 3, {4}, {2}); }, 0, 0, ""},
    {"task of an unknown input", [](Bench& b) { return addTask(b, 5, {99}, {2}); }, 4,
     zlr::HOST_ADD_TASK, "input channel 99"},
    {"task key registered already", [](Bench& b) { return addTask(b, 1, {4}, {3}); }, 4,
     zlr::HOST_ADD_TASK, "registered already"},
    {"task writing an unknown output", [](Bench& b) { return addTask(b, 6, {4}, {42}); }, 4,
     zlr::HOST_ADD_TASK, "output channel 42"},
    {"task telegram that does not read",
     [](Bench& b) { return sendXml(b, zlr::HOST_ADD_TASK, "<AcquisitionTaskAdd"); }, 1,
     zlr::HOST_ADD_TASK, "does not read"},
    {"removal of an unknown task",
     [](Bench& b) { return b.host.messageSync(zlr::HOST_REMOVE_TASK, 77, nullptr, nullptr); }, 4,
     zlr::HOST_REMOVE_TASK, "task 77 is not registered"},
    {"removal of a known task",
     [](Bench& b) { return b.host.messageSync(zlr::HOST_REMOVE_TASK, 1, nullptr, nullptr); }, 0, 0,
     ""},
    {"data set of an unknown channel", [](Bench& b) { return b.side.registerDataSet(9, {4, 99}); },
     4, zlr::HOST_DATA_SET_REGISTER, "channel 99"},
    {"data set of a channel that is not usable",
     [](Bench& b) {
         b.acquisition.inputs().setUsable(4, false);
         return b.side.registerDataSet(9, {4});
     },
     4, zlr::HOST_DATA_SET_REGISTER, "not usable"},
    {"data set key registered already", [](Bench& b) { return b.side.registerDataSet(2, {4}); }, 4,
     zlr::HOST_DATA_SET_REGISTER, "registered already"},
    {"unregistering an unknown data set", [](Bench& b) { return b.side.unregisterDataSet(9); }, 4,
     zlr::HOST_DATA_SET_UNREGISTER, "data set 9 is not registered"},
    {"stream on an unknown data set", [](Bench& b) { return b.side.startStream(9, 0.01); }, 4,
     zlr::HOST_DATA_STREAM_START, "not registered"},
    {"stop of a stream that does not run", [](Bench& b) { return b.side.stopStream(2); }, 4,
     zlr::HOST_DATA_STREAM_STOP, "does not run"},
    {"next blocks of a stream that does not run",
     [](Bench& b) {
         return sendXml(b, zlr::HOST_DATA_REQUEST, zlr::DataTransferRequestTelegram(2).generate());
     },
     4, zlr::HOST_DATA_REQUEST, "does not run"},
    {"window of an unknown data set",
     [](Bench& b) {
         return sendXml(b, zlr::HOST_DATA_REQUEST,
                        zlr::DataTransferRequestTelegram(9, 0.0, 1.0).generate());
     },
     4, zlr::HOST_DATA_REQUEST, "not registered"},
    {"window that ends before it starts",
     [](Bench& b) {
         return sendXml(b, zlr::HOST_DATA_REQUEST,
                        zlr::DataTransferRequestTelegram(2, 1.0, 0.5).generate());
     },
     4, zlr::HOST_DATA_REQUEST, "no span of time"},
    {"regions of an unknown data set",
     [](Bench& b) {
         zlr::DataRegionsRequestTelegram telegram;
         telegram.m_data_set_key = 9;
         return sendXml(b, zlr::HOST_DATA_REGIONS_REQUEST, telegram.generate());
     },
     4, zlr::HOST_DATA_REGIONS_REQUEST, "not registered"},
    {"sample block of two doubles", [](Bench& b) { return writeBytes(b, 24); }, 0, 0, ""},
    {"sample block of no values", [](Bench& b) { return writeBytes(b, 8); }, 0, 0, ""},
    {"sample block shorter than its index", [](Bench& b) { return writeBytes(b, 4); }, 1,
     zlr::HOST_WRITE_SAMPLES, "4 bytes"},
    {"sample block with a broken double", [](Bench& b) { return writeBytes(b, 20); }, 1,
     zlr::HOST_WRITE_SAMPLES, "20 bytes"},
};

TEST(HostDataRefusals, EachAnswersItsCodeAndLeavesItsFault)
{
    for (const RefusalCase& test : CASES) {
        SCOPED_TRACE(test.name);
        Bench bench;
        InputChannelSetup setup;
        setup.id = 4;
        bench.acquisition.addInputChannel(setup, MemoryRecording::of(std::vector<double>(100, 0.5)));
        bench.acquisition.setOutputCheck([](std::uint64_t local_id) { return local_id < 10; });
        ASSERT_EQ(addTask(bench, 1, {4}, {0, 1}), 0u);
        ASSERT_EQ(bench.side.registerDataSet(2, {4}), 0u);
        ASSERT_TRUE(bench.host.faults().empty());

        EXPECT_EQ(test.act(bench), test.answer);
        const std::vector<ProtocolFault> faults = bench.host.faults();
        if (test.fault_message == 0) {
            EXPECT_TRUE(faults.empty()) << faults.front().reason;
            continue;
        }
        ASSERT_EQ(faults.size(), 1u);
        EXPECT_EQ(faults.front().message_id, test.fault_message);
        EXPECT_NE(faults.front().reason.find(test.reason), std::string::npos)
            << faults.front().reason;
    }
}

} // namespace
