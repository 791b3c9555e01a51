// Every message a plug-in receives, sent with what a careless or broken
// host might put in it: nothing, a value of the wrong type, empty and
// malformed and oversized telegrams, keys and ids nobody knows. The plug-in
// must answer each with a code, crash on none, and give back every value.
#include "plugin_loader.h"
#include "sim_channel_bench.h"
#include "sim_host_model.h"
#include "sim_validate_checks.h"
#include "sim_values.h"
#include "zlrbase_messages.h"

#include <functional>
#include <pugixml.hpp>

namespace zelvar_sim::validate {
namespace {

struct ReceivedMessage {
    std::uint32_t id;
    const char* name;
};

// PLUGIN_INIT and PLUGIN_FINISH are the session's own: they open and close
// the check.
const ReceivedMessage RECEIVED_MESSAGES[] = {
    {zlr::PLUGIN_EVENT, "PLUGIN_EVENT"},
    {zlr::PLUGIN_CUSTOM_REQUEST, "PLUGIN_CUSTOM_REQUEST"},
    {zlr::PLUGIN_CHANNELS_CHECK, "PLUGIN_CHANNELS_CHECK"},
    {zlr::PLUGIN_CONFIG_UPDATE, "PLUGIN_CONFIG_UPDATE"},
    {zlr::PLUGIN_CONFIG_RESTORE, "PLUGIN_CONFIG_RESTORE"},
    {zlr::PLUGIN_CONFIG_APPLIED, "PLUGIN_CONFIG_APPLIED"},
    {zlr::PLUGIN_CHANNEL_IDS_MAPPED, "PLUGIN_CHANNEL_IDS_MAPPED"},
    {zlr::PLUGIN_CHANNEL_DATA_FORMAT, "PLUGIN_CHANNEL_DATA_FORMAT"},
    {zlr::PLUGIN_CHANNEL_CONFIG_CHANGED, "PLUGIN_CHANNEL_CONFIG_CHANGED"},
    {zlr::PLUGIN_CHANNEL_STATUS, "PLUGIN_CHANNEL_STATUS"},
    {zlr::PLUGIN_TASK_PROCESS, "PLUGIN_TASK_PROCESS"},
    {zlr::PLUGIN_TASK_INIT_TIMEBASES, "PLUGIN_TASK_INIT_TIMEBASES"},
    {zlr::PLUGIN_TASK_PREPARE_PROCESSING, "PLUGIN_TASK_PREPARE_PROCESSING"},
    {zlr::PLUGIN_TASK_STOP_PROCESSING, "PLUGIN_TASK_STOP_PROCESSING"},
    {zlr::PLUGIN_SOFTWARE_CHANNEL_CREATE, "PLUGIN_SOFTWARE_CHANNEL_CREATE"},
    {zlr::PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION, "PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION"},
    {zlr::PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES, "PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES"},
    {zlr::PLUGIN_CONFIG_CLEAR, "PLUGIN_CONFIG_CLEAR"},
};


std::string oversizedTelegram()
{
    // Deeply nested and long: a reader that recurses or copies carelessly
    // shows it here.
    std::string text = "<?xml version=\"1.0\"?>";
    constexpr int DEPTH = 20000;
    for (int i = 0; i < DEPTH; ++i) {
        text += "<Channels>";
    }
    text += std::string(4u << 20, 'x');
    for (int i = 0; i < DEPTH; ++i) {
        text += "</Channels>";
    }
    return text;
}

struct HostileValue {
    std::string what;
    std::function<zlr::IfValue*(SimHost&)> make; // null: no value at all
    bool tried_with_every_key = false;
};

std::vector<HostileValue> hostileValues()
{
    const auto xml = [](std::string text) {
        return [text](SimHost& host) -> zlr::IfValue* {
            return new XmlValue(host.ledger(), text);
        };
    };
    return {
        {"no value", [](SimHost&) -> zlr::IfValue* { return nullptr; }, true},
        {"a string value", [](SimHost& host) -> zlr::IfValue* {
             return new StringValue(host.ledger(), "<Channels/>");
         }},
        {"a boolean value",
         [](SimHost& host) -> zlr::IfValue* { return new BooleanValue(host.ledger(), true); }},
        {"an unsigned value",
         [](SimHost& host) -> zlr::IfValue* { return new UInt64Value(host.ledger(), ~0ull); }},
        {"an empty telegram", xml("")},
        {"a telegram that does not parse", xml("<Channels><Channel channel_id=\"1\">")},
        {"an unknown root element", xml("<NoSuchTelegram version=\"1\"/>")},
        {"unknown ids and keys",
         xml("<UpdateConfig><Channel channel_id=\"4294967295\"><Property name=\"NoSuchKey\" "
             "type=\"double\" value=\"nan\"/></Channel></UpdateConfig>"),
         true},
        {"numbers that are no numbers",
         xml("<Channels><Channel channel_id=\"-1e999\" valid=\"maybe\"/></Channels>")},
        {"an oversized telegram", xml(oversizedTelegram())},
    };
}

std::vector<std::uint64_t> hostileKeys(CheckContext& context)
{
    return {0, 1, 0x7FFFFFFF, 0x80000000, ~0ull, context.random()()};
}

// Sends every message with every hostile value; the unknown keys go with
// the values that reach the lookup of a key, every other value has key 0.
void sendHostileMessages(CheckContext& context, PluginSession& session, SimHost& host,
                         const std::vector<std::uint64_t>& keys)
{
    const std::vector<HostileValue> values = hostileValues();
    for (const ReceivedMessage& message : RECEIVED_MESSAGES) {
        for (const HostileValue& hostile : values) {
            const std::vector<std::uint64_t> tried =
                hostile.tried_with_every_key ? keys : std::vector<std::uint64_t>{0};
            for (const std::uint64_t key : tried) {
                context.trace(std::string(message.name) + " with " + hostile.what + ", key " +
                              std::to_string(key));
                zlr::IfValue* value = hostile.make(host);
                zlr::IfValue* result = nullptr;
                const std::uint64_t answer = session.send(message.id, key, value, &result);
                if (result) {
                    result->release();
                }
                if (value) {
                    value->release();
                }
                CheckContext::require(isResultCode(answer),
                                      std::string(message.name) + " with " + hostile.what +
                                          " answers " + std::to_string(answer) +
                                          ", which is no result code of the contract");
            }
        }
    }
}

void checkHostileMessages(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    SimHost host;
    host.setIdentity("Zelvar", library.manifestInfo().minimum_host_version);
    {
        PluginSession session(library, host);
        sendHostileMessages(context, session, host, hostileKeys(context));
        context.trace("PLUGIN_FINISH after the hostile messages");
        session.finish();
    }
    CheckContext::require(host.valuesOutsideTree() == 0,
                          std::to_string(host.valuesOutsideTree()) +
                              " host value objects still alive after the plug-in was deleted "
                              "(a reference kept or never released)");
}

// The same with a channel and its task alive, so that the keys of a real
// task and channel meet the hostile values.
void checkHostileMessagesToChannel(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    ChannelBench bench(library, context.seed());
    const std::uint32_t root = bench.createChannel();
    std::vector<std::uint64_t> keys = {root, 0, ~0ull};
    for (const RegisteredTask& task : bench.acquisition().tasks().tasks()) {
        keys.push_back(task.key);
    }
    bench.model().detach();
    sendHostileMessages(context, bench.session(), bench.host(), keys);
    context.trace("PLUGIN_FINISH after the hostile messages");
    bench.finish();
}

// Fails the check on the first telegram of the plug-in that the host could
// not read, saying whether it is not XML at all or not the telegram asked for.
void requireReadableTelegrams(const SimHost& host)
{
    const std::vector<ProtocolFault> faults = host.faults();
    if (faults.empty()) {
        return;
    }
    const ProtocolFault& fault = faults.front();
    std::string reason = messageName(fault.message_id) + ": " + fault.reason;
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_string(fault.telegram.c_str());
    if (!fault.telegram.empty() && !parsed) {
        reason = messageName(fault.message_id) + ": the plug-in's telegram is no well-formed XML (" +
                 parsed.description() + " at offset " + std::to_string(parsed.offset) + ")";
    }
    const std::string shown = fault.telegram.substr(0, 120);
    throw CheckFailed(reason + (shown.empty() ? "" : ": " + shown));
}

// The messages a plug-in answers with a telegram, asked as a host asks them,
// beside what it sends on its own at start and finish.
void checkTelegrams(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    SimHost host;
    host.setIdentity("Zelvar", library.manifestInfo().minimum_host_version);
    HostModel model(host);
    {
        PluginSession session(library, host);
        model.attach(session);
        requireReadableTelegrams(host);
        context.trace("PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION over one synchronous input");
        const QueryActionOutcome query = model.queryAction({{1, synchronousScalar()}});
        CheckContext::require(isResultCode(query.code),
                              "PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION answers " +
                                  std::to_string(query.code) + ", which is no result code of the contract");
        requireReadableTelegrams(host);
        // Only a plug-in with a software channel owes this answer.
        if (!model.softwareChannels().registered().empty()) {
            context.trace("PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES");
            model.hasInstances();
            requireReadableTelegrams(host);
        }
        context.trace("PLUGIN_FINISH");
        model.detach();
        session.finish();
    }
    requireReadableTelegrams(host);
    CheckContext::require(host.valuesOutsideTree() == 0,
                          std::to_string(host.valuesOutsideTree()) +
                              " host value objects still alive after the plug-in was deleted");
}

} // namespace

std::vector<Check> messageChecks()
{
    return {
        {"hostile-messages", 1,
         "every message with no value, wrong types, empty, malformed and oversized telegrams and "
         "unknown keys: an answer code each, no crash, every value given back",
         checkHostileMessages},
        {"telegrams", 1,
         "what the plug-in sends and answers with is well-formed XML and reads as the telegram "
         "the host expects",
         checkTelegrams},
        {"hostile-messages-to-channel", 2,
         "the same with a channel and its task alive, their keys among the unknown ones",
         checkHostileMessagesToChannel},
    };
}

} // namespace zelvar_sim::validate
