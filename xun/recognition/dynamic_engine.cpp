// The default engine binding: the engine's shared library, opened by name at first use.
#include <dlfcn.h>

#include <mutex>
#include <string>

#include "xun/recognition/library_loader.h"
#include "xun/recognition/recognition_engine.h"
#include "xun/support/runtime_error.h"

// The engine's exports use the callee-pops convention where the platform has one (32-bit x86);
// everywhere else its functions are plain C functions.
#if defined(__i386__)
#define XUN_ENGINE_CALL __attribute__((stdcall))
#else
#define XUN_ENGINE_CALL
#endif

namespace xun {
namespace {

using LoadImageFn = int16_t XUN_ENGINE_CALL (*)(const char*, int32_t, int16_t, int16_t, int16_t,
                                                int16_t);
using UnloadImageFn = int16_t XUN_ENGINE_CALL (*)();
using SearchOMRFn = int16_t XUN_ENGINE_CALL (*)(int16_t, int16_t, int16_t, int16_t, int16_t*,
                                                int16_t*);
using CheckOMRFn = int16_t XUN_ENGINE_CALL (*)(int16_t, int16_t, int16_t, int16_t, int16_t, int16_t,
                                               int16_t*);
using CheckOMRFillFn = int16_t XUN_ENGINE_CALL (*)(int16_t, int16_t, int16_t, int16_t, int16_t,
                                                   int16_t, int16_t*, int16_t*);
using CheckImageFn = int16_t XUN_ENGINE_CALL (*)(int16_t, int16_t, int16_t, int16_t, int32_t*);
using AlignOMRFn = int16_t XUN_ENGINE_CALL (*)(int16_t, int16_t, int16_t, int16_t, int16_t, int16_t,
                                               int16_t, int16_t*, int16_t*, int16_t*, int16_t*);
// The engine takes the mark array as a plain address: it knows the record layout, not our type.
using GetMarkAreasFn = int16_t XUN_ENGINE_CALL (*)(int16_t, int16_t, int16_t, int16_t, int16_t,
                                                   int16_t, int16_t, int16_t*, void*);

std::mutex dl_mutex;

template <class Fn>
Fn As(void* address) {
  return reinterpret_cast<Fn>(address);
}

}  // namespace

IRecognitionEngine::~IRecognitionEngine() = default;

DynamicRecognitionEngine::DynamicRecognitionEngine(std::string sLibrary)
    : library_(std::move(sLibrary)) {}

DynamicRecognitionEngine::~DynamicRecognitionEngine() {
  if (handle_) dlclose(handle_);
}

void* DynamicRecognitionEngine::EntryPoint(const char* sName) {
  const std::lock_guard lock(dl_mutex);
  if (!handle_) {
    handle_ = detail::OpenBesideLibrary(library_);
    if (!handle_) throw RuntimeError(kErrFileNotFound, "File not found: " + library_);
  }
  void* address = dlsym(handle_, sName);
  if (!address)
    throw RuntimeError(kErrDllFunctionNotFound,
                       "Can't find DLL entry point " + std::string(sName) + " in " + library_);
  return address;
}

int16_t DynamicRecognitionEngine::LoadImage(const char* sImageFile, int32_t lReserved,
                                            int16_t iXDPI, int16_t iYDPI, int16_t iWidth,
                                            int16_t iHeight) {
  return As<LoadImageFn>(EntryPoint("XUNREC_load_image"))(sImageFile, lReserved, iXDPI, iYDPI,
                                                          iWidth, iHeight);
}

int16_t DynamicRecognitionEngine::UnloadImage() {
  return As<UnloadImageFn>(EntryPoint("XUNREC_unload_image"))();
}

int16_t DynamicRecognitionEngine::SearchOMRField(int16_t iLeft, int16_t iTop, int16_t iRight,
                                                 int16_t iBottom, int16_t& iNumRows,
                                                 int16_t& iNumCols) {
  return As<SearchOMRFn>(EntryPoint("XUNREC_search_omr_field"))(iLeft, iTop, iRight, iBottom,
                                                                &iNumRows, &iNumCols);
}

int16_t DynamicRecognitionEngine::CheckOMRField(int16_t iNumRows, int16_t iNumCols, int16_t iLeft,
                                                int16_t iTop, int16_t iRight, int16_t iBottom,
                                                int16_t* iResults) {
  return As<CheckOMRFn>(EntryPoint("XUNREC_check_omr_field"))(iNumRows, iNumCols, iLeft, iTop,
                                                              iRight, iBottom, iResults);
}

int16_t DynamicRecognitionEngine::CheckOMRFieldFill(int16_t iNumRows, int16_t iNumCols,
                                                    int16_t iLeft, int16_t iTop, int16_t iRight,
                                                    int16_t iBottom, int16_t* iResults,
                                                    int16_t* iFill) {
  return As<CheckOMRFillFn>(EntryPoint("XUNREC_check_omr_field_fill"))(
      iNumRows, iNumCols, iLeft, iTop, iRight, iBottom, iResults, iFill);
}

int16_t DynamicRecognitionEngine::CheckImageField(int16_t iLeft, int16_t iTop, int16_t iRight,
                                                  int16_t iBottom, int32_t& lFilledPixels) {
  return As<CheckImageFn>(EntryPoint("XUNREC_check_image_field"))(iLeft, iTop, iRight, iBottom,
                                                                  &lFilledPixels);
}

int16_t DynamicRecognitionEngine::AlignOMRField(int16_t iLeft, int16_t iTop, int16_t iRight,
                                                int16_t iBottom, int16_t iNumRows, int16_t iNumCols,
                                                int16_t iSearchDistance, int16_t& iNewLeft,
                                                int16_t& iNewTop, int16_t& iNewRight,
                                                int16_t& iNewBottom) {
  return As<AlignOMRFn>(EntryPoint("XUNREC_align_omr_field"))(
      iLeft, iTop, iRight, iBottom, iNumRows, iNumCols, iSearchDistance, &iNewLeft, &iNewTop,
      &iNewRight, &iNewBottom);
}

int16_t DynamicRecognitionEngine::GetMarkAreas(int16_t iLeft, int16_t iTop, int16_t iRight,
                                               int16_t iBottom, int16_t iMinWidth,
                                               int16_t iMinHeight, int16_t iMaxMarks,
                                               int16_t& iNumMarks, xunReadArea* oMarks) {
  return As<GetMarkAreasFn>(EntryPoint("XUNREC_get_mark_areas"))(
      iLeft, iTop, iRight, iBottom, iMinWidth, iMinHeight, iMaxMarks, &iNumMarks, oMarks);
}

}  // namespace xun
