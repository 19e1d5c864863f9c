#include "xun/recognition/bas_externs.h"

#include <cerrno>
#include <mutex>
#include <utility>

#include "xun/support/trap.h"

namespace xun::basExterns {
namespace {

std::mutex engine_mutex;
std::shared_ptr<IRecognitionEngine> installed_engine;
thread_local int32_t last_dll_error = 0;

// Every wrapper does the same: trap, call, record errno, return the code unchanged. A trapped
// failure answers 0, the result that was never set: the report, not the code, tells the user.
template <class Call>
int16_t CallEngine(const char* location, Call&& call) {
  return Trap(location, int16_t{0}, [&] {
    const std::shared_ptr<IRecognitionEngine> engine = Engine();
    errno = 0;
    const int16_t code = call(*engine);
    last_dll_error = errno;
    return code;
  });
}

}  // namespace

std::shared_ptr<IRecognitionEngine> SetEngine(std::shared_ptr<IRecognitionEngine> oEngine) {
  const std::lock_guard lock(engine_mutex);
  std::swap(installed_engine, oEngine);
  return oEngine;
}

std::shared_ptr<IRecognitionEngine> Engine() {
  const std::lock_guard lock(engine_mutex);
  if (!installed_engine) installed_engine = std::make_shared<DynamicRecognitionEngine>();
  return installed_engine;
}

int32_t LastDllError() {
  return last_dll_error;
}

int16_t CLoadImage(const std::string& sImageFile, int32_t lReserved, int16_t iXDPI, int16_t iYDPI,
                   int16_t iWidth, int16_t iHeight) {
  // Paths are handed over as the file system's own bytes (UTF-8), which is what the engine
  // opens files with on this platform.
  return CallEngine("basExterns.CLoadImage", [&](IRecognitionEngine& engine) {
    return engine.LoadImage(sImageFile.c_str(), lReserved, iXDPI, iYDPI, iWidth, iHeight);
  });
}

int16_t CUnloadImage() {
  return CallEngine("basExterns.CUnloadImage",
                    [&](IRecognitionEngine& engine) { return engine.UnloadImage(); });
}

int16_t CSearchOMR(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom, int16_t& iNumRows,
                   int16_t& iNumCols) {
  return CallEngine("basExterns.CSearchOMR", [&](IRecognitionEngine& engine) {
    return engine.SearchOMRField(iLeft, iTop, iRight, iBottom, iNumRows, iNumCols);
  });
}

int16_t CCheckOMR(int16_t iNumRows, int16_t iNumCols, int16_t iLeft, int16_t iTop, int16_t iRight,
                  int16_t iBottom, int16_t* iResults) {
  return CallEngine("basExterns.CCheckOMR", [&](IRecognitionEngine& engine) {
    return engine.CheckOMRField(iNumRows, iNumCols, iLeft, iTop, iRight, iBottom, iResults);
  });
}

int16_t CCheckOMRFill(int16_t iNumRows, int16_t iNumCols, int16_t iLeft, int16_t iTop,
                      int16_t iRight, int16_t iBottom, int16_t* iResults, int16_t* iFill) {
  return CallEngine("basExterns.CCheckOMRFill", [&](IRecognitionEngine& engine) {
    return engine.CheckOMRFieldFill(iNumRows, iNumCols, iLeft, iTop, iRight, iBottom, iResults,
                                    iFill);
  });
}

int16_t CCheckImage(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                    int32_t& lFilledPixels) {
  return CallEngine("basExterns.CCheckImage", [&](IRecognitionEngine& engine) {
    return engine.CheckImageField(iLeft, iTop, iRight, iBottom, lFilledPixels);
  });
}

int16_t CAlignOMRField(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                       int16_t iNumRows, int16_t iNumCols, int16_t iSearchDistance,
                       int16_t& iNewLeft, int16_t& iNewTop, int16_t& iNewRight,
                       int16_t& iNewBottom) {
  return CallEngine("basExterns.CAlignOMRField", [&](IRecognitionEngine& engine) {
    return engine.AlignOMRField(iLeft, iTop, iRight, iBottom, iNumRows, iNumCols, iSearchDistance,
                                iNewLeft, iNewTop, iNewRight, iNewBottom);
  });
}

int16_t CGetMarksAreas(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                       int16_t iMinWidth, int16_t iMinHeight, int16_t iMaxMarks, int16_t& iNumMarks,
                       xunReadArea* oMarks) {
  return CallEngine("basExterns.CGetMarksAreas", [&](IRecognitionEngine& engine) {
    return engine.GetMarkAreas(iLeft, iTop, iRight, iBottom, iMinWidth, iMinHeight, iMaxMarks,
                               iNumMarks, oMarks);
  });
}

}  // namespace xun::basExterns
