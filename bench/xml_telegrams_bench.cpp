#include "xpugixml.h"
#include "zlrapi_property.h"
#include "zlrapi_xml_builder.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <sstream>
#include <string>

namespace {

constexpr int CHANNELS = 32;

// A data request of the kind sent while data flows: a root with a key and a
// window, and one element per channel.
void BM_XmlBuilderTelegram(benchmark::State& state)
{
    std::ostringstream out;
    for (auto _ : state) {
        out.str({});
        zlr::XmlBuilder builder(out);
        {
            zlr::XmlBuilderElement root = builder.child(
                "DataTransferRequest", {zlr::XmlAttribute("data_set_key", std::uint64_t{12345}),
                                        zlr::XmlAttribute("protocol_version", "1.0")});
            zlr::XmlBuilderElement window = root.child(
                "Window", {zlr::XmlAttribute("start", 1.0 / 3.0), zlr::XmlAttribute("end", 0.1)});
            zlr::XmlBuilderElement channels = root.child("Channels");
            for (std::uint64_t id = 0; id < CHANNELS; ++id) {
                channels.child("Channel", {zlr::XmlAttribute("channel_id", id),
                                           zlr::XmlAttribute("scale", 1e300 / (id + 1)),
                                           zlr::XmlAttribute("used", true)});
            }
        }
        builder.flush();
        benchmark::DoNotOptimize(out.str().size());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(out.str().size()));
}
BENCHMARK(BM_XmlBuilderTelegram);

void BM_PugixmlTelegram(benchmark::State& state)
{
    std::size_t size = 0;
    for (auto _ : state) {
        pugi::xml_document document;
        pugi::xml_node root = document.append_child("DataTransferRequest");
        xpugi::set_attribute(root, "data_set_key", std::uint64_t{12345});
        xpugi::set_protocol_version(root);
        pugi::xml_node window = root.append_child("Window");
        xpugi::set_attribute(window, "start", 1.0 / 3.0);
        xpugi::set_attribute(window, "end", 0.1);
        pugi::xml_node channels = root.append_child("Channels");
        for (std::uint64_t id = 0; id < CHANNELS; ++id) {
            pugi::xml_node channel = channels.append_child("Channel");
            xpugi::set_attribute(channel, "channel_id", id);
            xpugi::set_attribute(channel, "scale", 1e300 / (id + 1));
            xpugi::set_attribute(channel, "used", "true");
        }
        const std::string text = xpugi::to_xml(document, false);
        size = text.size();
        benchmark::DoNotOptimize(size);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
    state.counters["text_bytes"] = static_cast<double>(size);
}
BENCHMARK(BM_PugixmlTelegram);

zlr::Property settings()
{
    zlr::PropertyList list;
    list.push_back(zlr::Property("Name", "Frequency of input 1"));
    list.push_back(zlr::Property("Used", true));
    list.push_back(zlr::Property("Mode", std::string("Fast"), std::string("Mode")));
    zlr::Property range("Range");
    range.setValue(zlr::Range(0.5, 20000.0, "Hz"));
    list.push_back(range);
    zlr::Property rate("SampleRate");
    rate.setValue(zlr::Scalar(48000.0, "Hz"));
    list.push_back(rate);
    zlr::Property ids("Inputs");
    ids.setChannelIDList({{17, 18, 19, 20}});
    list.push_back(ids);
    zlr::Property all("Settings");
    all.setValue(list);
    return all;
}

void BM_PropertyWrite(benchmark::State& state)
{
    const zlr::Property property = settings();
    for (auto _ : state) {
        pugi::xml_document document;
        property.writeTo(document);
        benchmark::DoNotOptimize(xpugi::to_xml(document, false));
    }
}
BENCHMARK(BM_PropertyWrite);

void BM_PropertyRead(benchmark::State& state)
{
    pugi::xml_document written;
    settings().writeTo(written);
    const std::string text = xpugi::to_xml(written, false);
    for (auto _ : state) {
        pugi::xml_document document;
        xpugi::parse(document, text.data(), text.size());
        zlr::Property property;
        benchmark::DoNotOptimize(property.readFrom(document.document_element(), 0.0));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_PropertyRead);

} // namespace

BENCHMARK_MAIN();
