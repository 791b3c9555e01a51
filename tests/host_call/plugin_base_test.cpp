// Dispatch of the plug-in base: the plug-in's own look first, then the
// handlers, then PLUGIN_INIT and PLUGIN_FINISH; and the custom requests.
#include "sim_host.h"
#include "sim_values.h"
#include "zlrbase_messages.h"
#include "zlrfw_custom_request_handler.h"
#include "zlrfw_plugin_base.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>

namespace {

using zlr::framework::CustomRequestHandler;
using zlr::framework::IfMessageHandler;

class FixedHandler : public IfMessageHandler {
public:
    FixedHandler(std::uint64_t id, std::uint64_t answer) : m_id(id), m_answer(answer) {}
    std::uint64_t pluginMessage(std::uint64_t id, std::uint64_t, zlr::IfValue*,
                                zlr::IfValue**) override
    {
        ++calls;
        if (id == 0xDEAD) {
            throw std::runtime_error("handler failed");
        }
        return id == m_id ? m_answer : zlr::RESULT_NOT_HANDLED;
    }
    void setPluginHost(zlr::IfHost* host) override { known_host = host; }

    int calls = 0;
    zlr::IfHost* known_host = nullptr;

private:
    std::uint64_t m_id;
    std::uint64_t m_answer;
};

class TestPlugin : public zlr::framework::PluginBase {
public:
    TestPlugin()
    {
        addMessageHandler(handler);
        addMessageHandler(handler); // a second registration is ignored
        addMessageHandler(custom);
    }
    bool handleMessage(std::uint64_t id, std::uint64_t, zlr::IfValue*, zlr::IfValue**,
                       std::uint64_t& answer) override
    {
        if (id == 0x77) {
            answer = 5;
            return true;
        }
        return false;
    }
    std::uint64_t init(std::string& error_text) override
    {
        error_text = init_text;
        return init_code;
    }
    bool deinit() override { return deinit_result; }

    std::shared_ptr<FixedHandler> handler = std::make_shared<FixedHandler>(0x55, 9);
    std::shared_ptr<CustomRequestHandler> custom = std::make_shared<CustomRequestHandler>();
    std::uint64_t init_code = 0;
    std::string init_text;
    bool deinit_result = true;
};

TEST(PluginBase, OffersMessagesToThePluginThenToTheHandlers)
{
    zelvar_sim::SimHost host;
    TestPlugin plugin;
    EXPECT_EQ(plugin.handler->known_host, nullptr);
    plugin.setPluginHost(&host);
    EXPECT_EQ(plugin.handler->known_host, &host);

    EXPECT_EQ(plugin.pluginMessage(0x77, 0, nullptr, nullptr), 5u);
    EXPECT_EQ(plugin.handler->calls, 0);
    EXPECT_EQ(plugin.pluginMessage(0x55, 0, nullptr, nullptr), 9u);
    EXPECT_EQ(plugin.handler->calls, 1); // registered once only
    EXPECT_EQ(plugin.pluginMessage(zlr::PLUGIN_CONFIG_CLEAR, 0, nullptr, nullptr),
              zlr::RESULT_NOT_HANDLED);
    EXPECT_EQ(plugin.pluginMessage(0xDEAD, 0, nullptr, nullptr), zlr::RESULT_EXCEPTION);
}

TEST(PluginBase, FailedInitGivesAnErrorObjectOnlyWithoutAText)
{
    struct Case {
        std::uint64_t code;
        const char* text;
        bool want_result;
        bool error_object;
    };
    const Case cases[] = {
        {0, "", true, false},
        {12, "", true, true},
        {12, "Current version of Zelvar is not supported.", true, false},
        {4, "", false, false},
    };
    for (const Case& c : cases) {
        zelvar_sim::SimHost host;
        TestPlugin plugin;
        plugin.setPluginHost(&host);
        plugin.init_code = c.code;
        plugin.init_text = c.text;
        zlr::IfValue* result = nullptr;
        EXPECT_EQ(plugin.pluginMessage(zlr::PLUGIN_INIT, 0, nullptr, c.want_result ? &result : nullptr),
                  c.code);
        EXPECT_EQ(result != nullptr, c.error_object) << c.code << " '" << c.text << "'";
        if (result) {
            ASSERT_EQ(result->getType(), zlr::VALUE_TYPE_ERROR);
            auto* error = static_cast<zelvar_sim::ErrorValue*>(result);
            EXPECT_EQ(error->code(), c.code);
            EXPECT_STREQ(error->getText(), "");
            EXPECT_EQ(host.valuesOutsideTree(), 1);
            result->release();
        }
        EXPECT_EQ(host.valuesOutsideTree(), 0);
    }
}

TEST(PluginBase, FinishAnswersFourWhenDeinitFails)
{
    zelvar_sim::SimHost host;
    TestPlugin plugin;
    plugin.setPluginHost(&host);
    EXPECT_EQ(plugin.pluginMessage(zlr::PLUGIN_FINISH, 0, nullptr, nullptr), 0u);
    plugin.deinit_result = false;
    EXPECT_EQ(plugin.pluginMessage(zlr::PLUGIN_FINISH, 0, nullptr, nullptr), 4u);
}

TEST(CustomRequestHandler, LooksUpTheLowSixteenBitsOfKeysInRange)
{
    zelvar_sim::SimHost host;
    TestPlugin plugin;
    plugin.setPluginHost(&host);
    zlr::IfHost* seen_host = nullptr;
    plugin.custom->registerHandler(1, [&](zlr::IfHost* h, zlr::IfValue*, zlr::IfValue**) {
        seen_host = h;
        return std::uint64_t{21};
    });
    plugin.custom->registerHandler(2, nullptr);

    struct Case {
        std::uint64_t key;
        std::uint64_t answer;
    };
    const Case cases[] = {
        {1, 21},
        {0x10001, 21},
        {0x7FFF0001, 21},
        {0, zlr::RESULT_NOT_HANDLED},
        {0x80000001, zlr::RESULT_NOT_HANDLED},
        {3, zlr::RESULT_NOT_HANDLED},
        {2, zlr::RESULT_EXCEPTION}, // an empty callable throws; the base turns it into 13
    };
    for (const Case& c : cases) {
        EXPECT_EQ(plugin.pluginMessage(zlr::PLUGIN_CUSTOM_REQUEST, c.key, nullptr, nullptr),
                  c.answer)
            << std::hex << c.key;
    }
    EXPECT_EQ(seen_host, &host);
    EXPECT_EQ(plugin.custom->pluginMessage(zlr::PLUGIN_EVENT, 1, nullptr, nullptr),
              zlr::RESULT_NOT_HANDLED);
}

} // namespace
