// The wrappers through which the library calls the recognition engine, one per entry point.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "xun/export.h"
#include "xun/model/enums.h"
#include "xun/recognition/recognition_engine.h"

namespace xun::basExterns {

// Installs the engine that every wrapper calls from now on, for the whole process, and returns
// the one it replaces. nullptr goes back to the default: the engine library loaded by name.
XUN_API std::shared_ptr<IRecognitionEngine> SetEngine(std::shared_ptr<IRecognitionEngine> oEngine);
// The engine the wrappers call now (the default one unless another was installed).
XUN_API std::shared_ptr<IRecognitionEngine> Engine();

// The operating system's error value (errno) of this thread right after the last engine call,
// kept for a later report.
XUN_API int32_t LastDllError();

// Each wrapper calls the engine and returns its code unchanged. A failure of the call itself
// (no engine library, no entry point, an engine that throws) is reported at
// "basExterns.<wrapper>" and the wrapper returns 0, having written nothing.
XUN_API int16_t CLoadImage(const std::string& sImageFile, int32_t lReserved, int16_t iXDPI,
                           int16_t iYDPI, int16_t iWidth, int16_t iHeight);
XUN_API int16_t CUnloadImage();
XUN_API int16_t CSearchOMR(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                           int16_t& iNumRows, int16_t& iNumCols);
XUN_API int16_t CCheckOMR(int16_t iNumRows, int16_t iNumCols, int16_t iLeft, int16_t iTop,
                          int16_t iRight, int16_t iBottom, int16_t* iResults);
XUN_API int16_t CCheckOMRFill(int16_t iNumRows, int16_t iNumCols, int16_t iLeft, int16_t iTop,
                              int16_t iRight, int16_t iBottom, int16_t* iResults, int16_t* iFill);
XUN_API int16_t CCheckImage(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                            int32_t& lFilledPixels);
XUN_API int16_t CAlignOMRField(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                               int16_t iNumRows, int16_t iNumCols, int16_t iSearchDistance,
                               int16_t& iNewLeft, int16_t& iNewTop, int16_t& iNewRight,
                               int16_t& iNewBottom);
XUN_API int16_t CGetMarksAreas(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                               int16_t iMinWidth, int16_t iMinHeight, int16_t iMaxMarks,
                               int16_t& iNumMarks, xunReadArea* oMarks);

}  // namespace xun::basExterns
