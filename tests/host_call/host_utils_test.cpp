// The two ways of sending data and a refused translation, against the
// simulated host, whose ledger sees every reference come back. The typed
// queries are seen at work in the input channel's tests.
#include "sim_host.h"
#include "zlr_assert_capture.h"
#include "zlrapi_utils.h"
#include "zlrbase_messages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using zelvar_sim::SimHost;

TEST(SendSyncXmlMessage, SendsTheTextAsAnXmlValueAndReportsALengthMismatch)
{
    SimHost host;
    zlr::test::AssertCapture asserts;
    const char* text = "<a/>";
    EXPECT_EQ(zlr::sendSyncXmlMessage(&host, 0x123, 9, text, std::strlen(text) + 1, nullptr), 0u);
    EXPECT_TRUE(asserts.reported().empty());
    zlr::sendSyncXmlMessage(&host, 0x123, 9, text, 7, nullptr);
    EXPECT_EQ(asserts.reported(),
              std::vector<std::string>{"static_cast<std::size_t>(xml_msg->getLength()) != param_size - 1 (4 != 6)"});
    EXPECT_EQ(host.messagesWithId(0x123).size(), 2u);
    EXPECT_EQ(host.valuesOutsideTree(), 0);
}

TEST(AddTranslation, ReadsTheErrorObjectOfARefusalAndGivesItBack)
{
    SimHost host;
    int error_texts_read = 0;
    host.setResponder(zlr::HOST_ADD_TRANSLATION,
                      [&](const zelvar_sim::MessageRecord&, zlr::IfValue** result) {
                          auto* error = static_cast<zlr::IfErrorValue*>(
                              host.createValue(zlr::VALUE_TYPE_ERROR));
                          error->set(4, "refused");
                          ++error_texts_read;
                          *result = error;
                          return std::uint64_t{4};
                      });
    EXPECT_FALSE(zlr::addTranslation(&host, "<TS/>"));
    EXPECT_EQ(error_texts_read, 1);
    EXPECT_EQ(host.valuesOutsideTree(), 0);
}

TEST(WriteSamples, SendsTheIndexThenTheRawBytes)
{
    SimHost host;
    const double values[] = {1.5, -2.0};
    zlr::writeSamples(&host, 7, 0x0102030405060708ull, values, sizeof values);
    zlr::writeSamples(&host, 8, 3, nullptr, 0);

    const auto sent = host.messagesWithId(zlr::HOST_WRITE_SAMPLES);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].kind, zelvar_sim::CallKind::sync_data);
    EXPECT_EQ(sent[0].key, 7u);
    ASSERT_EQ(sent[0].bytes.size(), 8u + sizeof values);
    const unsigned char index_le[8] = {8, 7, 6, 5, 4, 3, 2, 1};
    EXPECT_EQ(std::memcmp(sent[0].bytes.data(), index_le, 8), 0);
    EXPECT_EQ(std::memcmp(sent[0].bytes.data() + 8, values, sizeof values), 0);
    EXPECT_EQ(sent[1].bytes.size(), 8u); // an empty block still carries its index
    EXPECT_EQ(sent[1].bytes[0], 3);
}

} // namespace
