// Reads the description of a block list and of each of its blocks, which
// every processing step meets a dozen times, and the answer to a regions
// request. A description in the plain form the host writes (the
// declaration, no whitespace between elements, each known attribute once
// with a plain decimal number) is read directly; any
// other text goes to the DOM readers of the telegrams, so that the answer
// is theirs in every case.
#pragma once

#include "zlrapi_data_block_xml.h"

#include <cstddef>

namespace zlr::framework {

// What DataBlock::parse answers for the same text.
bool readDataBlockDescription(const char* text, std::size_t length, DataBlock& block);

// What DataBlockList::parse answers for the same text.
bool readDataBlockListDescription(const char* text, std::size_t length, DataBlockList& list);

// What DataRegions::parse answers for the same text: the regions answer of
// every time-stamped step.
bool readDataRegionsDescription(const char* text, std::size_t length, DataRegions& regions);

} // namespace zlr::framework
