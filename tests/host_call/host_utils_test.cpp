// Typed queries, value factories and the two ways of sending data, against
// the simulated host, whose ledger sees every reference come back.
#include "sim_host.h"
#include "zlr_assert_capture.h"
#include "zlrapi_utils.h"
#include "zlrbase_messages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using zelvar_sim::SimHost;

TEST(TypedQuery, KeepsOnlyTheRequestedTypeAndReleasesTheQuery)
{
    SimHost host;
    host.tree().setString("#PluginHost", "Name", "Zelvar");
    host.tree().setBoolean("#Zelvar", "AnalysisModeActive", true);
    host.tree().setScalar("#Zelvar#Channels#17", "SampleRate", 1000.0, "Hz");

    struct Case {
        const char* path;
        const char* key;
        bool as_string, as_xml, as_boolean, as_scalar;
    };
    const Case cases[] = {
        {"#PluginHost", "Name", true, false, false, false},
        {"#Zelvar", "AnalysisModeActive", false, false, true, false},
        {"#Zelvar#Channels#17", "SampleRate", false, false, false, true},
        {"#Zelvar", "Missing", false, false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.path) + " " + c.key);
        EXPECT_EQ(bool(zlr::queryStringValue(&host, c.path, c.key)), c.as_string);
        EXPECT_EQ(bool(zlr::queryXmlValue(&host, c.path, c.key)), c.as_xml);
        EXPECT_EQ(bool(zlr::queryBooleanValue(&host, c.path, c.key)), c.as_boolean);
        EXPECT_EQ(bool(zlr::queryScalarValue(&host, c.path, c.key)), c.as_scalar);
        EXPECT_EQ(host.valuesOutsideTree(), 0);
    }
    auto name = zlr::queryStringValue(&host, "#PluginHost", "Name");
    EXPECT_STREQ(name->getData(), "Zelvar");
    EXPECT_EQ(host.valuesOutsideTree(), 0); // held, but it is the tree's own object
}

TEST(TypedQuery, ChannelFormsBuildThePathAndSkipTheAllOnesId)
{
    SimHost host;
    host.tree().setString("#Zelvar#Channels#42", "LongName", "Voltage");
    const auto name = zlr::queryChannelStringValue(&host, 42, "LongName");
    ASSERT_TRUE(name);
    EXPECT_STREQ(name->getData(), "Voltage");
    EXPECT_EQ(host.queries().back().path, "#Zelvar#Channels#42");

    const auto before = host.queries().size();
    EXPECT_FALSE(zlr::queryChannelBooleanValue(&host, ~std::uint64_t{0}, "Usable"));
    EXPECT_EQ(host.queries().size(), before);
}

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

    const auto sent = host.messagesWithId(0x123);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].value_type, zlr::VALUE_TYPE_XML);
    EXPECT_EQ(sent[0].key, 9u);
    EXPECT_EQ(sent[0].text, "<a/>");
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
