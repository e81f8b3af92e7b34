// Sizes of a source's reads through a convertor.
#pragma once

// Bytes of one conversion buffer; bounds one decoder read and is a multiple of kReadGranularity.
constexpr int kConversionBufferSize = 215040;

// Converting reads ask the decoder for a multiple of this, which holds whole frames of every common layout.
constexpr int kReadGranularity = 12;

// A converting read must come out above this many bytes.
constexpr int kLargestRefusedRead = 15;

// Bytes of the caller's buffer that are left to the convertor's rounding.
constexpr int kConvertorHeadroom = 16;
