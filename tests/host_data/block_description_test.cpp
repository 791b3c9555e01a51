// Block, block list and regions descriptions as the host writes them and the
// kit reads them: the host's block text is XmlBuilder's, and the kit's direct reader
// answers what the DOM readers answer, on the host's texts and on random
// damage to them (other spacing, hex, long or odd numbers, cut texts).
#include "sim_data_set_writers.h"
#include "zlrfw_block_description.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

// A text with one random change of the kinds a careless writer makes.
std::string damaged(std::string text, std::mt19937_64& random)
{
    static const char* const inserts[] = {" ", "\n", "0x1F", "-", "99999999999999999999", "1e-320",
                                          "&amp;", "<!-- c -->", "\"", "/>", "<X/>", "1e400", "+"};
    std::uniform_int_distribution<std::size_t> at(0, text.size());
    const std::size_t place = at(random);
    switch (random() % 4) {
    case 0:
        return text.insert(place, inserts[random() % std::size(inserts)]);
    case 1:
        return text.substr(0, place);
    case 2:
        if (place < text.size()) {
            text[place] = "0 9x\"<>/=e."[random() % 11];
        }
        return text;
    default:
        return text.erase(place, random() % 8);
    }
}

template <typename Telegram, typename Direct>
void expectSameAnswer(const std::string& text, Direct direct)
{
    Telegram by_dom;
    Telegram by_direct;
    const bool dom_read = by_dom.parse(text.c_str(), text.size());
    EXPECT_EQ(direct(text.c_str(), text.size(), by_direct), dom_read) << text;
    EXPECT_EQ(by_direct, by_dom) << text;
}

TEST(BlockDescription, DirectReaderAnswersAsTheDomReadersOnWrittenAndDamagedTexts)
{
    std::mt19937_64 random(1123);
    std::uniform_int_distribution<std::uint64_t> any;
    const std::uint64_t scales[] = {10, 100000, 1ull << 40, ~std::uint64_t{0}};
    std::uniform_real_distribution<double> seconds(0.0, 1e4);
    for (int round = 0; round < 3000; ++round) {
        const std::uint64_t scale = scales[round % 4];
        zlr::DataBlock block;
        block.m_stream_id = any(random) % scale;
        block.m_data_size = any(random) % scale;
        for (std::uint64_t k = random() % 4; k > 0; --k) {
            block.m_channels.push_back({static_cast<std::uint32_t>(any(random) % 100000),
                                        any(random) % scale, any(random) % scale,
                                        any(random) % scale, any(random) % scale,
                                        any(random) % scale});
        }
        const std::string block_text = zelvar_sim::writeDataBlock(block);
        zlr::DataBlock read;
        ASSERT_TRUE(zlr::framework::readDataBlockDescription(block_text.c_str(),
                                                             block_text.size(), read));
        EXPECT_EQ(read, block);

        zlr::DataBlockList list;
        list.m_block_count = static_cast<std::uint32_t>(any(random) % 1000);
        for (std::uint64_t k = random() % 4; k > 0; --k) {
            const double begin = round % 5 == 0 ? seconds(random) * 1e-310 : seconds(random);
            list.m_intervals.push_back({begin, begin + seconds(random)});
        }
        for (std::uint64_t k = random() % 3; k > 0; --k) {
            list.m_regions.push_back({any(random) % scale, any(random) % scale, any(random) % scale});
        }
        const std::string list_text = zelvar_sim::writeDataBlockList(list);
        const std::string regions_text = zelvar_sim::writeDataRegions(list.m_regions);

        SCOPED_TRACE(round);
        expectSameAnswer<zlr::DataBlock>(block_text, zlr::framework::readDataBlockDescription);
        expectSameAnswer<zlr::DataBlockList>(list_text,
                                             zlr::framework::readDataBlockListDescription);
        expectSameAnswer<zlr::DataBlock>(damaged(block_text, random),
                                         zlr::framework::readDataBlockDescription);
        expectSameAnswer<zlr::DataBlockList>(damaged(list_text, random),
                                             zlr::framework::readDataBlockListDescription);
        expectSameAnswer<zlr::DataRegions>(regions_text,
                                           zlr::framework::readDataRegionsDescription);
        expectSameAnswer<zlr::DataRegions>(damaged(regions_text, random),
                                           zlr::framework::readDataRegionsDescription);
    }
}

} // namespace
