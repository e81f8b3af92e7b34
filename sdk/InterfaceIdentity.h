// Identities by interface type, so that a class's bases are its query table. [any thread]
#pragma once

#include "com/Aggregatable.h"
#include "com/ComponentEnum.h"
#include "com/Configurable.h"
#include "com/FeatureSupport.h"
#include "com/InterfaceIds.h"
#include "com/NamedSettings.h"
#include "stream/AudioTargetOpener.h"
#include "stream/ClippingCount.h"
#include "stream/Convertor.h"
#include "stream/FileOpener.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/RawWriter.h"
#include "stream/SourceDetails.h"
#include "stream/TargetTags.h"
#include "stream/URLSourceHandler.h"

// An author's own interface gets its identity by a further specialisation.
template <typename TInterface>
constexpr unsigned long kIdentityOf = TInterface::kIdentity;

template <>
inline constexpr unsigned long kIdentityOf<IProcess> = IID_IProcess;
template <>
inline constexpr unsigned long kIdentityOf<ISourceName> = IID_ISourceName;
template <>
inline constexpr unsigned long kIdentityOf<IAggregatable> = IID_IAggregatable;
template <>
inline constexpr unsigned long kIdentityOf<IAudioRawReader> = IID_IAudioRawReader;
template <>
inline constexpr unsigned long kIdentityOf<IAudioFileOpener> = IID_IAudioFileOpener;
template <>
inline constexpr unsigned long kIdentityOf<IConvertorFactory> = IID_IConvertorFactory;
template <>
inline constexpr unsigned long kIdentityOf<IComponentEnum> = IID_IComponentEnum;
template <>
inline constexpr unsigned long kIdentityOf<ISeekable> = IID_ISeekable;
template <>
inline constexpr unsigned long kIdentityOf<IAudioRawBlockInfo> = IID_IAudioRawBlockInfo;
template <>
inline constexpr unsigned long kIdentityOf<IExtensionList> = IID_IExtensionList;
template <>
inline constexpr unsigned long kIdentityOf<IAudioRawWriter> = IID_IAudioRawWriter;
template <>
inline constexpr unsigned long kIdentityOf<IInfoReader> = IID_IInfoReader;
template <>
inline constexpr unsigned long kIdentityOf<IConfigurable> = IID_IConfigurable;
template <>
inline constexpr unsigned long kIdentityOf<IURLSourceHandler> = IID_IURLSourceHandler;
template <>
inline constexpr unsigned long kIdentityOf<IComponentAbout> = IID_IComponentAbout;
template <>
inline constexpr unsigned long kIdentityOf<IFeatureSupport> = IID_IFeatureSupport;
template <>
inline constexpr unsigned long kIdentityOf<IAdvancedFormat> = IID_IAdvancedFormat;
template <>
inline constexpr unsigned long kIdentityOf<IIndexArray> = IID_IIndexArray;
template <>
inline constexpr unsigned long kIdentityOf<IAudioTargetOpener> = IID_IAudioTargetOpener;
template <>
inline constexpr unsigned long kIdentityOf<ITargetTags> = IID_ITargetTags;
template <>
inline constexpr unsigned long kIdentityOf<INamedSettings> = IID_INamedSettings;
template <>
inline constexpr unsigned long kIdentityOf<IClippingCount> = IID_IClippingCount;

// The address that a query for TInterface hands out: an opener's is its first table, which has no IUnknown.
template <typename TInterface>
void* FaceOf(TInterface* object) {
    return object;
}

// The first of an opener's two tables.
inline void* FaceOf(IAudioFileOpener* object) { return static_cast<IAudioFileOpenerOperations*>(object); }
