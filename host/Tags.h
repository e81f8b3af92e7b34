// Descriptive tags on their way from a source to a target.
#pragma once

#include <array>
#include <string>

#include "stream/SourceDetails.h"
#include "stream/TargetTags.h"

constexpr int kTagCount = 5;

// By ETag; empty where there is none.
using CTagTexts = std::array<std::string, kTagCount>;

// In the order of ETag.
constexpr std::array<const char*, kTagCount> kTagNames = {"title", "artist", "album", "year", "genre"};

// What the source itself tells. [stream-thread]
CTagTexts ReadTags(IInfoReader& source);

// Hands over the tags that the target has a place for and returns what it says about those that it refuses all the
// same, in one line, empty for none. `path` is the file of the target. [stream-thread]
std::string WriteTags(const CTagTexts& tags, ITargetTags& target, const std::string& path);
