// Where the members of the manager, of its records and of a plug-in library lie.
#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "com/ComponentInfo.h"
#include "pluginmgr/AudioPluginLib.h"
#include "pluginmgr/AudioPluginMgr.h"
#include "tests/support/MemberPlaces.h"

static_assert(sizeof(CAudioPluginMgr) == 440 && alignof(CAudioPluginMgr) == 8, "eight tables first");
static_assert(std::has_virtual_destructor<CAudioPluginMgr>::value, "its destructor has slots");
static_assert(sizeof(CAudioPluginMgr::AUXOBJECT) == 24, "table, key, object");
static_assert(std::has_virtual_destructor<CAudioPluginMgr::AUXOBJECT>::value, "its only virtual operation");
static_assert(sizeof(CAudioPluginLib) == 4152, "table, path, name, module, two entries");
static_assert(std::has_virtual_destructor<CAudioPluginLib>::value, "its only virtual operation");
static_assert(sizeof(COMPONENT_INFO) == 32 && !std::is_polymorphic<COMPONENT_INFO>::value, "name, index");

namespace support {

struct SManagerMembers {};
std::vector<SPlace> PlacesOf(SManagerMembers);
template struct SMembers<
    SManagerMembers, &CAudioPluginMgr::m_references, &CAudioPluginMgr::m_loads, &CAudioPluginMgr::m_strPluginDirectory,
    &CAudioPluginMgr::m_strImagesDirectory, &CAudioPluginMgr::m_vComponents, &CAudioPluginMgr::m_vLibraries,
    &CAudioPluginMgr::m_vIdentities, &CAudioPluginMgr::m_pConvertorFactory, &CAudioPluginMgr::m_pURLSourceHandler,
    &CAudioPluginMgr::m_vAuxObjects, &CAudioPluginMgr::m_vReceivers, &CAudioPluginMgr::m_mtxReceivers,
    &CAudioPluginMgr::m_strVendor, &CAudioPluginMgr::m_strProduct, &CAudioPluginMgr::m_vComponentOrder,
    &CAudioPluginMgr::m_metadataSettings, &CAudioPluginMgr::m_pAppWindow, &CAudioPluginMgr::m_bFeatureBasic,
    &CAudioPluginMgr::m_bFeatureAdvancedFormats>;

struct SLibraryMembers {};
std::vector<SPlace> PlacesOf(SLibraryMembers);
template struct SMembers<SLibraryMembers, &CAudioPluginLib::m_szPath, &CAudioPluginLib::m_strFileName,
                         &CAudioPluginLib::m_pModule, &CAudioPluginLib::m_pGetPrimaryAudioObject,
                         &CAudioPluginLib::m_pReadyToFinish>;

}  // namespace support

namespace {

using Places = std::vector<support::SPlace>;

TEST(ManagerLayout, MembersLieInTheirOrderBehindTheEightTables) {
    const Places expected = {{64, 32},  {96, 32},              // reference count, load count
                             {128, 24}, {152, 24},             // plug-in directory, images directory
                             {176, 24}, {200, 24}, {224, 24},  // components, libraries, component identities
                             {248, 8},  {256, 8},              // convertor factory, URL source handler
                             {264, 24}, {288, 24}, {312, 16},  // auxiliary objects, event receivers, their lock
                             {328, 24}, {352, 24}, {376, 24},  // vendor, product, component order
                             {400, 8},  {408, 8},              // one word of settings, application window
                             {416, 1},  {417, 1}};             // feature switches
    EXPECT_EQ(PlacesOf(support::SManagerMembers()), expected);
}

TEST(LibraryLayout, MembersLieInTheirOrderBehindTheTable) {
    const Places expected = {{8, 4096}, {4104, 24}, {4128, 8}, {4136, 8}, {4144, 8}};
    EXPECT_EQ(PlacesOf(support::SLibraryMembers()), expected);
}

TEST(AuxObjectLayout, IsTheKeyThenTheObject) {
    EXPECT_EQ(support::PlaceOf(&CAudioPluginMgr::AUXOBJECT::pKey), (support::SPlace{8, 8}));
    EXPECT_EQ(support::PlaceOf(&CAudioPluginMgr::AUXOBJECT::pObject), (support::SPlace{16, 8}));
}

TEST(ComponentInfoLayout, IsTheFileNameThenTheIndex) {
    EXPECT_EQ(support::PlaceOf(&COMPONENT_INFO::m_strLibraryFileName), (support::SPlace{0, 24}));
    EXPECT_EQ(support::PlaceOf(&COMPONENT_INFO::m_nIndex), (support::SPlace{24, 4}));
}

}  // namespace
