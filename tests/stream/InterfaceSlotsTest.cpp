// The slots and exact types of the operations of the stream interfaces, from their headers.
#include <gtest/gtest.h>

#include <cstdint>

#include "stream/AudioPluginMgrInterface.h"
#include "stream/AudioTargetOpener.h"
#include "stream/ClippingCount.h"
#include "stream/Convertor.h"
#include "stream/FileOpener.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/RawWriter.h"
#include "stream/SourceDetails.h"
#include "stream/TargetTags.h"
#include "stream/URLAudioTargetFactory.h"
#include "stream/URLSourceHandler.h"
#include "tests/support/InterfaceSlots.h"

namespace {

using support::LengthBehindUnknown;
using support::Slot;
using support::TableLength;

TEST(InterfaceSlots, OfIAudioPluginMgr) {
    using I = IAudioPluginMgr;
    EXPECT_EQ(Slot<bool(const char*)>(&I::SetPluginDirectory), 3U);
    EXPECT_EQ(Slot<bool(const char*)>(&I::SetImagesDirectory), 4U);
    EXPECT_EQ(Slot<const char*()>(&I::GetImagesDirectory), 5U);
    EXPECT_EQ(Slot<bool()>(&I::LoadPlugins), 6U);
    EXPECT_EQ(Slot<bool()>(&I::CanUnloadPlugins), 7U);
    EXPECT_EQ(Slot<bool()>(&I::UnloadPlugins), 8U);
    EXPECT_EQ((Slot<bool(IConvertorFactory*, IStatus**)>(&I::SetConvertor)), 9U);
    EXPECT_EQ(Slot<bool(IConvertorFactory**)>(&I::GetConvertor), 10U);
    EXPECT_EQ(Slot<bool(IComponentEnum**)>(&I::GetUnsupportedComponents), 11U);
    EXPECT_EQ((Slot<bool(unsigned int, IUnknown*)>(&I::SendEvent)), 12U);
    EXPECT_EQ(Slot<bool(IEventReceiver*)>(&I::SubscribeToEvents), 13U);
    EXPECT_EQ(Slot<bool(IEventReceiver*)>(&I::UnsubscribeToEvents), 14U);
    EXPECT_EQ((Slot<bool(const char*, const SWavFormat*, IUnknown**, int, EAuxFlags, EAuxFlags, IStatus**)>(
                  &I::OpenURLAudioFile)),
              15U);
    EXPECT_EQ((Slot<bool(IURLAudioTargetFactory*, IUnknown**, const SWavFormat&, IStatus**)>(&I::CreateURLAudioTarget)),
              16U);
    EXPECT_EQ((Slot<bool(void*, IUnknown*)>(&I::AttachAuxObject)), 17U);
    EXPECT_EQ(Slot<bool(void*)>(&I::DetachAuxObject), 18U);
    EXPECT_EQ((Slot<bool(void*, IUnknown**)>(&I::GetAuxObject)), 19U);
    EXPECT_EQ(LengthBehindUnknown<I>(), 20U);
}

TEST(InterfaceSlots, OfIProcess) {
    EXPECT_EQ(Slot<bool(IStatus**)>(&IProcess::Start), 3U);
    EXPECT_EQ(Slot<bool(IStatus**)>(&IProcess::End), 4U);
    EXPECT_EQ(Slot<bool()>(&IProcess::IsInProcess), 5U);
    EXPECT_EQ(LengthBehindUnknown<IProcess>(), 6U);
}

TEST(InterfaceSlots, OfIAudioRawReader) {
    EXPECT_EQ(Slot<SWavFormat()>(&IAudioRawReader::GetRawFormat), 3U);
    EXPECT_EQ((Slot<bool(unsigned char*, int, int*, EAudioRawState&, IStatus**)>(&IAudioRawReader::RawRead)), 4U);
    EXPECT_EQ(Slot<std::uint64_t()>(&IAudioRawReader::GetRawLen), 5U);
    EXPECT_EQ(LengthBehindUnknown<IAudioRawReader>(), 6U);
}

TEST(InterfaceSlots, OfIAudioRawBlockInfo) {
    EXPECT_EQ(Slot<std::uint64_t()>(&IAudioRawBlockInfo::GetPos), 3U);
    EXPECT_EQ(Slot<std::int64_t()>(&IAudioRawBlockInfo::GetBlockSize), 4U);
    EXPECT_EQ(Slot<std::uint64_t()>(&IAudioRawBlockInfo::GetDataLength), 5U);
    EXPECT_EQ(LengthBehindUnknown<IAudioRawBlockInfo>(), 6U);
}

TEST(InterfaceSlots, OfIIndexArray) {
    EXPECT_EQ(Slot<int()>(&IIndexArray::GetIndexNumber), 3U);
    EXPECT_EQ(Slot<std::uint64_t(int)>(&IIndexArray::GetIndex), 4U);
    EXPECT_EQ(LengthBehindUnknown<IIndexArray>(), 5U);
}

TEST(InterfaceSlots, OfIInfoReader) {
    EXPECT_EQ(Slot<const char*()>(&IInfoReader::GetTitle), 3U);
    EXPECT_EQ(Slot<const char*()>(&IInfoReader::GetArtist), 4U);
    EXPECT_EQ(Slot<const char*()>(&IInfoReader::GetAlbum), 5U);
    EXPECT_EQ(Slot<const char*()>(&IInfoReader::GetYear), 6U);
    EXPECT_EQ(Slot<const char*()>(&IInfoReader::GetGenre), 7U);
    EXPECT_EQ(LengthBehindUnknown<IInfoReader>(), 8U);
}

TEST(InterfaceSlots, OfISeekable) {
    EXPECT_EQ((Slot<bool(unsigned long, IStatus**)>(&ISeekable::Seek)), 3U);
    EXPECT_EQ(LengthBehindUnknown<ISeekable>(), 4U);
}

TEST(InterfaceSlots, OfIRealFormat) {
    EXPECT_EQ(Slot<SWavFormat()>(&IRealFormat::GetRealFormat), 3U);
    EXPECT_EQ(LengthBehindUnknown<IRealFormat>(), 4U);
}

TEST(InterfaceSlots, OfIAdvancedFormat) {
    EXPECT_EQ(Slot<SAdvancedWavFormat()>(&IAdvancedFormat::GetAdvancedFormat), 3U);
    EXPECT_EQ(LengthBehindUnknown<IAdvancedFormat>(), 4U);
}

TEST(InterfaceSlots, OfISourceName) {
    EXPECT_EQ(Slot<void()>(&ISourceName::ReservedFirst), 3U);
    EXPECT_EQ(Slot<const char*()>(&ISourceName::GetSourceName), 4U);
    EXPECT_EQ(LengthBehindUnknown<ISourceName>(), 5U);
}

TEST(InterfaceSlots, OfIAudioRawWriter) {
    EXPECT_EQ((Slot<bool(unsigned char*, int, EAudioRawState&, IStatus**)>(&IAudioRawWriter::RawWrite)), 3U);
    EXPECT_EQ(Slot<SWavFormat()>(&IAudioRawWriter::GetRawFormat), 4U);
    EXPECT_EQ(LengthBehindUnknown<IAudioRawWriter>(), 5U);
}

// Two tables side by side: the first without the operations of IUnknown, the second with them.
TEST(InterfaceSlots, OfIAudioFileOpener) {
    EXPECT_EQ(Slot<EAuxFlags()>(&IAudioFileOpenerOperations::GetAuxFlags), 0U);
    EXPECT_EQ((Slot<bool(const char*, IUnknown**, EAuxFlags, EAuxFlags, IStatus**)>(&IAudioFileOpenerOperations::Open)),
              1U);
    EXPECT_EQ(TableLength<IAudioFileOpenerOperations>(), 2U);
    EXPECT_EQ(Slot<unsigned int()>(&IAudioFileOpenerControl::GetOpenerState), 3U);
    EXPECT_EQ(LengthBehindUnknown<IAudioFileOpenerControl>(), 4U);

    static_assert(sizeof(IAudioFileOpener) == 2 * sizeof(void*), "two tables and nothing else");
    EXPECT_EQ(TableLength<IAudioFileOpener>(), 2U);
    const auto* const opener = reinterpret_cast<const IAudioFileOpener*>(0x1000);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(static_cast<const IAudioFileOpenerOperations*>(opener)), 0x1000U);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(static_cast<const IAudioFileOpenerControl*>(opener)), 0x1008U);
}

TEST(InterfaceSlots, OfIExtensionList) {
    EXPECT_EQ(Slot<int()>(&IExtensionList::GetCount), 3U);
    EXPECT_EQ(Slot<const char*(int)>(&IExtensionList::GetAt), 4U);
    EXPECT_EQ(LengthBehindUnknown<IExtensionList>(), 5U);
}

TEST(InterfaceSlots, OfIURLSourceHandler) {
    EXPECT_EQ(Slot<unsigned int()>(&IURLSourceHandler::GetProtocols), 3U);
    EXPECT_EQ((Slot<bool(const char*, char*, int, IStatus**)>(&IURLSourceHandler::Fetch)), 4U);
    EXPECT_EQ(LengthBehindUnknown<IURLSourceHandler>(), 5U);
}

TEST(InterfaceSlots, OfIConvertorFactory) {
    EXPECT_EQ(Slot<void()>(&IConvertorFactory::ReservedFirst), 3U);
    EXPECT_EQ((Slot<bool(const SWavFormat*, const SWavFormat*, IAudioConvertor**, IStatus**)>(
                  &IConvertorFactory::CreateConvertor)),
              4U);
    EXPECT_EQ(LengthBehindUnknown<IConvertorFactory>(), 5U);
}

TEST(InterfaceSlots, OfIAudioConvertor) {
    EXPECT_EQ((Slot<bool(unsigned char*, int, int, IStatus**)>(&IAudioConvertor::Convert)), 3U);
    EXPECT_EQ(Slot<int()>(&IAudioConvertor::GetOutputLength), 4U);
    EXPECT_EQ(Slot<unsigned char*()>(&IAudioConvertor::GetOutputData), 5U);
    EXPECT_EQ(LengthBehindUnknown<IAudioConvertor>(), 6U);
}

// The one interface without the operations of IUnknown.
TEST(InterfaceSlots, OfIURLAudioTargetFactory) {
    EXPECT_EQ(Slot<void()>(&IURLAudioTargetFactory::ReservedFirst), 0U);
    EXPECT_EQ(Slot<void()>(&IURLAudioTargetFactory::ReservedSecond), 1U);
    EXPECT_EQ((Slot<bool(IUnknown**, const SWavFormat&, IStatus**)>(&IURLAudioTargetFactory::CreateTarget)), 2U);
    EXPECT_EQ(TableLength<IURLAudioTargetFactory>(), 3U);
}

TEST(InterfaceSlots, OfIAudioTargetOpener) {
    EXPECT_EQ((Slot<bool(const char*, const char*, IAudioTarget**, IStatus**)>(&IAudioTargetOpener::OpenTarget)), 3U);
    EXPECT_EQ(LengthBehindUnknown<IAudioTargetOpener>(), 4U);
}

TEST(InterfaceSlots, OfIAudioTarget) {
    EXPECT_EQ(Slot<IURLAudioTargetFactory*()>(&IAudioTarget::GetTargetFactory), 3U);
    EXPECT_EQ(LengthBehindUnknown<IAudioTarget>(), 4U);
}

TEST(InterfaceSlots, OfITargetTags) {
    EXPECT_EQ(Slot<bool(ETag)>(&ITargetTags::HasTag), 3U);
    EXPECT_EQ((Slot<bool(ETag, const char*, IStatus**)>(&ITargetTags::SetTag)), 4U);
    EXPECT_EQ(LengthBehindUnknown<ITargetTags>(), 5U);
}

TEST(InterfaceSlots, OfIClippingCount) {
    EXPECT_EQ(Slot<std::uint64_t()>(&IClippingCount::GetClippedSamples), 3U);
    EXPECT_EQ(LengthBehindUnknown<IClippingCount>(), 4U);
}

}  // namespace
