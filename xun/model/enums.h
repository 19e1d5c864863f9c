// The public enumerations and the timing-mark area record. Their values are the numbers the
// template file stores, so none of them may change.
#pragma once

#include <cstdint>

namespace xun {

// The read method a template is laid out for (bit values).
enum xunTemplateReadType : int32_t {
  xunTemplateReadTypeNone = 0,
  xunTemplateReadTypeOffice = 1,
  xunTemplateReadTypeClassic = 2,
  xunTemplateReadTypeHybrid = 4,
};

// The scanner drop-out colour a page was designed for (bit values; All is their union).
enum xunTemplateDropOutColor : int32_t {
  xunTemplateDropOutColorNone = 0,
  xunTemplateDropOutColorRed = 1,
  xunTemplateDropOutColorGreen = 2,
  xunTemplateDropOutColorBlue = 4,
  xunTemplateDropOutColorAll = 7,
};

// How blanks inside a multi-character answer are treated.
enum xunBlanksFlag : int32_t {
  xunBlanksFlagAll = 0,
  xunBlanksFlagIgnoreLeadingTrailing = 1,
  xunBlanksFlagIgnoreAll = 2,
  xunBlanksFlagIgnoreLeading = 3,
  xunBlanksFlagIgnoreTrailing = 4,
};

// Policy for several marks in one OMR question.
enum xunOMRMults : int32_t {
  xunOMRMultsNoDiscriminate = -2,
  xunOMRMultsSelectBest = -1,
  xunOMRMultsNotAllowed = 0,
  xunOMRMultsAllowAll = 1,
};

// The recognition kind of a region.
enum xunRecogType : int32_t {
  xunRecogTypeOMR = 1,
  xunRecogTypeImage = 2,
  xunRecogTypeBarcode = 3,
  xunRecogTypeOCR = 4,
};

// The sub-type of a region. Numbering restarts for each recognition kind, so a value means
// nothing without the region's xunRecogType; OMRNone is "no type" for every kind.
enum xunFieldType : int32_t {
  xunFieldTypeOMRNone = -1,
  xunFieldTypeOMRMult = 1,
  xunFieldTypeOMRGrid = 2,
  xunFieldTypeOMRAdd = 3,
  xunFieldTypeOMRBoolean = 4,
  xunFieldTypeOMRBinary = 5,
  xunFieldTypeOMRList = 6,
  xunFieldTypeOMRRank = 7,
  xunFieldTypeBarcodeAuto = 1,
  xunFieldTypeBarcodeCode39 = 2,
  xunFieldTypeBarcodeCodaBar = 3,
  xunFieldTypeBarcodeInterleaved2of5 = 4,
  xunFieldTypeBarcodeCode11 = 5,
  xunFieldTypeBarcodeCode93 = 6,
  xunFieldTypeBarcodeCode128 = 7,
  xunFieldTypeBarcodeEAN13 = 8,
  xunFieldTypeBarcodeEAN8 = 9,
  xunFieldTypeBarcodeUPCA = 10,
  xunFieldTypeBarcodeUPCE = 11,
  xunFieldTypeBarcodePDF417 = 12,
  xunFieldTypeBarcodeIndustrial2of5 = 13,
  xunFieldTypeBarcodeDatalogic2of5 = 14,
  xunFieldTypeBarcodeMatrix2of5 = 15,
  xunFieldTypeBarcodeAirline2of5 = 16,
  xunFieldTypeBarcodeUcc128 = 17,
  xunFieldTypeBarcodePatch = 18,
  xunFieldTypeBarcodeCode32 = 19,
  xunFieldTypeBarcodePostnet = 20,
  xunFieldTypeBarcodeDataMatrix = 21,
  xunFieldTypeBarcodeQRCode = 22,
  xunFieldTypeBarcodeCode39Extended = 23,
  xunFieldTypeImageClip = 1,
  xunFieldTypeImageClipData = 2,
  xunFieldTypeImageDataEntry = 3,
  xunFieldTypeOCRSimple = 1,
  xunFieldTypeOCRMODI = 2,
  xunFieldTypeOCRTesseract = 3,
};

// Orientation of the form or of a region; numbering restarts for each use, None is shared.
enum xunOrientationType : int32_t {
  xunOrientationTypeNone = -1,
  xunOrientationTypeFormPortrait = 0,
  xunOrientationTypeFormLandscape = 1,
  xunOrientationTypeOMRRow = 1,
  xunOrientationTypeOMRCol = 2,
  xunOrientationTypeBarcodeHorizontal = 1,
  xunOrientationTypeBarcodeVertical = 2,
};

// The data type of a region's answers.
enum xunDataType : int32_t {
  xunDataTypeNone = -1,
  xunDataTypeNumeric = 1,
  xunDataTypeText = 2,
  xunDataTypeAlphaNumeric = 3,
};

// The identification role of a question; Any is only a selector for the lookup methods.
enum xunIDType : int32_t {
  xunIDTypeAny = -1,
  xunIDTypeNone = 0,
  xunIDTypeForm = 1,
  xunIDTypePage = 2,
  xunIDTypeRespondent = 3,
  xunIDTypeReadHeadCheck = 4,
};

// File type of an image clip region's output.
enum xunImageClipType : int32_t {
  xunImageClipTypeUnknown = -1,
  xunImageClipTypePCXDCX = 0,
  xunImageClipTypeTIF = 1,
  xunImageClipTypePDF = 2,
  xunImageClipTypeJPG = 3,
};

// Compression of an image clip. Group3 and Group32D share 1 and nothing is 2: stored files
// depend on it, so a stored 1 always reads back as Group3.
enum xunImageClipCompression : int32_t {
  xunImageClipCompressionUnknown = -1,
  xunImageClipCompressionUncompressed = 0,
  xunImageClipCompressionGroup3 = 1,
  xunImageClipCompressionGroup32D = 1,
  xunImageClipCompressionGroup4 = 3,
  xunImageClipCompressionLZW = 4,
};

// The current and the compatible template version.
enum xunTemplateVersion : int32_t {
  xunTemplateVersionCurrent = 8,
  xunTemplateVersionCompatible = 8,
};

// A rectangle in image pixels: one timing-mark area.
struct xunReadArea {
  int16_t Left = 0;
  int16_t Top = 0;
  int16_t Width = 0;
  int16_t Height = 0;

  friend bool operator==(const xunReadArea&, const xunReadArea&) = default;
};

}  // namespace xun
