// Where the members of the aggregators lie.
#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "stream/SrcConvAggregator.h"
#include "stream/TargetAggregator.h"
#include "tests/support/MemberPlaces.h"

static_assert(sizeof(CSrcConvAggregator) == 272 && alignof(CSrcConvAggregator) == 8, "seven tables first");
static_assert(sizeof(CTargetAggregator) == 120 && alignof(CTargetAggregator) == 8, "two tables first");
static_assert(std::has_virtual_destructor<CSrcConvAggregator>::value, "its destructor has slots");
static_assert(!std::has_virtual_destructor<CTargetAggregator>::value, "its destructor has none");

namespace support {

struct SSourceMembers {};
std::vector<SPlace> PlacesOf(SSourceMembers);
template struct SMembers<
    SSourceMembers, &CSrcConvAggregator::m_pDecoder, &CSrcConvAggregator::m_pProcess, &CSrcConvAggregator::m_pReader,
    &CSrcConvAggregator::m_pBlockInfo, &CSrcConvAggregator::m_pAggregatable, &CSrcConvAggregator::m_pIndexArray,
    &CSrcConvAggregator::m_pInfoReader, &CSrcConvAggregator::m_pSeekable, &CSrcConvAggregator::m_pManager,
    &CSrcConvAggregator::m_pConvertor, &CSrcConvAggregator::m_realFormat, &CSrcConvAggregator::m_rawFormat,
    &CSrcConvAggregator::m_bValid, &CSrcConvAggregator::m_pConversionBuffer, &CSrcConvAggregator::m_fByteRatio,
    &CSrcConvAggregator::m_fRateRatio, &CSrcConvAggregator::m_strArtist, &CSrcConvAggregator::m_strTitle>;

struct STargetMembers {};
std::vector<SPlace> PlacesOf(STargetMembers);
template struct SMembers<STargetMembers, &CTargetAggregator::m_pEncoder, &CTargetAggregator::m_pProcess,
                         &CTargetAggregator::m_pWriter, &CTargetAggregator::m_pAggregatable,
                         &CTargetAggregator::m_pManager, &CTargetAggregator::m_pConvertor,
                         &CTargetAggregator::m_inputFormat, &CTargetAggregator::m_bValid>;

}  // namespace support

namespace {

using Places = std::vector<support::SPlace>;

TEST(SourceLayout, MembersLieInTheirOrderBehindTheSevenTables) {
    const Places expected = {{56, 8},   {64, 8},   {72, 8},  {80, 8}, {88, 8},  // decoder, its four indispensable faces
                             {96, 8},   {104, 8},  {112, 8},                    // index, tags, seeking
                             {120, 8},  {128, 8},                               // manager, convertor
                             {136, 36}, {172, 16},   // real format and reserved words, raw format
                             {188, 1},  {192, 8},    // valid flag, conversion buffer
                             {200, 4},  {204, 4},    // byte ratio, rate ratio
                             {208, 24}, {232, 24}};  // artist, title
    EXPECT_EQ(PlacesOf(support::SSourceMembers()), expected);
}

TEST(TargetLayout, MembersLieInTheirOrderBehindTheTwoTables) {
    const Places expected = {{16, 8},  {24, 8}, {32, 8}, {40, 8},  // encoder, its three faces
                             {48, 8},  {56, 8},                    // manager, convertor
                             {64, 36}, {100, 1}};                  // input format and reserved words, valid flag
    EXPECT_EQ(PlacesOf(support::STargetMembers()), expected);
}

}  // namespace
