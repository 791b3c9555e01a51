// The strict hooks seen working: the plug-in's own assertions reach the
// host, and the fixture takes an assertion that the test declared.
#include "sim_scenario.h"
#include "sim_values.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using zelvar_sim::SimHost;

// An XML value that says it is one byte longer than its text: the kit's
// check of what it sends must report it.
class OverlongXmlValue final : public zelvar_sim::RefCounted<zlr::IfXmlValue> {
public:
    explicit OverlongXmlValue(zelvar_sim::ValueLedger& ledger) : RefCounted(ledger, TYPE_CODE) {}
    const char* getData() override { return m_text.c_str(); }
    std::int32_t getLength() override { return static_cast<std::int32_t>(m_text.size() + 1); }
    void set(const char* text) override { m_text = text ? text : ""; }

private:
    std::string m_text;
};

class OverlongXmlHost : public SimHost {
public:
    zlr::IfValue* createValue(std::uint32_t type) override
    {
        if (type == zlr::IfXmlValue::TYPE_CODE) {
            return new OverlongXmlValue(ledger());
        }
        return SimHost::createValue(type);
    }
};

TEST(AssertionHook, RecordsThePluginsOwnAssertionsAndRestoresTheDefault)
{
    OverlongXmlHost host;
    host.setIdentity("Zelvar", "5.6");
    zelvar_sim::PluginLibrary library(zelvar_sim::test::frequencyMeasurementPlugin());
    {
        zelvar_sim::AssertionHook hook(library);
        ASSERT_TRUE(hook.observable()) << hook.notice();
        {
            zelvar_sim::PluginSession session(library, host);
            EXPECT_EQ(session.initOutcome().code, 0u);
        }
        const auto records = hook.records();
        // Each translation the plug-in sends goes in a value of the wrong length.
        ASSERT_GE(records.size(), 2u);
        for (const auto& record : records) {
            EXPECT_NE(record.expression.find("getLength()"), std::string::npos)
                << record.expression;
            EXPECT_EQ(record.path, "zlrapi_utils");
            EXPECT_GT(record.line, 0);
        }
        // One hook at a time: the handler has no room for a second owner.
        EXPECT_THROW(zelvar_sim::AssertionHook second(library), std::logic_error);
    }
    // After the hook the plug-in's default handler is back: nothing is kept.
    zelvar_sim::AssertionHook later(library);
    later.clear();
    {
        zelvar_sim::SimHost plain;
        plain.setIdentity("Zelvar", "5.6");
        zelvar_sim::PluginSession session(library, plain);
    }
    EXPECT_TRUE(later.records().empty());
}

// The fixture's own duty: the overlong values make the plug-in assert at
// its start, and a test that declares it passes.
class OverlongValueScenario : public zelvar_sim::test::SimScenario {
protected:
    std::unique_ptr<SimHost> makeHost() override { return std::make_unique<OverlongXmlHost>(); }
};

TEST_F(OverlongValueScenario, AnAssertionTheTestDeclaredPasses)
{
    ASSERT_TRUE(assertions().observable());
    EXPECT_FALSE(assertions().records().empty());
    expectAssertion("getLength()");
}

} // namespace
