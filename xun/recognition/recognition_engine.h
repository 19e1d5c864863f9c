// The recognition engine: the closed library that does the image work of registration. The
// library reaches it only through the basExterns wrappers.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "xun/export.h"
#include "xun/model/enums.h"

namespace xun {

// The engine's operations, one member per entry point, with its arguments in the engine's order.
// Coordinates are 16-bit pixels at 100 dots per inch; every member answers the engine's 16-bit
// code, 0 for success. The engine holds one current image: LoadImage makes it current,
// UnloadImage releases it, and everything in between works on it. A host or a test derives its
// own engine and installs it with basExterns::SetEngine.
class XUN_API IRecognitionEngine {
 public:
  virtual ~IRecognitionEngine();

  // XUNREC_load_image. lReserved is always 0.
  virtual int16_t LoadImage(const char* sImageFile, int32_t lReserved, int16_t iXDPI, int16_t iYDPI,
                            int16_t iWidth, int16_t iHeight) = 0;
  // XUNREC_unload_image.
  virtual int16_t UnloadImage() = 0;
  // XUNREC_search_omr_field: may change the row and column counts to the grid it found.
  virtual int16_t SearchOMRField(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                                 int16_t& iNumRows, int16_t& iNumCols) = 0;
  // XUNREC_check_omr_field: fills iResults, NumRows + NumCols + 5 elements (see
  // docs/recognition.md for what the library reads from it).
  virtual int16_t CheckOMRField(int16_t iNumRows, int16_t iNumCols, int16_t iLeft, int16_t iTop,
                                int16_t iRight, int16_t iBottom, int16_t* iResults) = 0;
  // XUNREC_check_omr_field_fill: as CheckOMRField, and one fill value per bubble in iFill,
  // NumRows by NumCols, the row index running fastest.
  virtual int16_t CheckOMRFieldFill(int16_t iNumRows, int16_t iNumCols, int16_t iLeft, int16_t iTop,
                                    int16_t iRight, int16_t iBottom, int16_t* iResults,
                                    int16_t* iFill) = 0;
  // XUNREC_check_image_field: counts the filled (dark) pixels of a rectangle.
  virtual int16_t CheckImageField(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                                  int32_t& lFilledPixels) = 0;
  // XUNREC_align_omr_field: finds the grid of rows by columns near the rectangle, at most
  // iSearchDistance away, and answers the rectangle where it lies on the image.
  virtual int16_t AlignOMRField(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                                int16_t iNumRows, int16_t iNumCols, int16_t iSearchDistance,
                                int16_t& iNewLeft, int16_t& iNewTop, int16_t& iNewRight,
                                int16_t& iNewBottom) = 0;
  // XUNREC_get_mark_areas: finds up to iMaxMarks marks of at least iMinWidth by iMinHeight in the
  // rectangle, writes them to oMarks and their number to iNumMarks.
  virtual int16_t GetMarkAreas(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                               int16_t iMinWidth, int16_t iMinHeight, int16_t iMaxMarks,
                               int16_t& iNumMarks, xunReadArea* oMarks) = 0;
};

// The engine reached through its shared library, loaded with dlopen at first use (and tried
// again on every call while it cannot be loaded). A missing library or entry point makes the
// call fail with error 53 or 453; the wrappers report that.
class XUN_API DynamicRecognitionEngine : public IRecognitionEngine {
 public:
  // The engine's library name; dlopen looks for it beside this library first, then on the
  // usual search path.
  static constexpr const char* kLibraryName = "libXUNRec90.so";

  explicit DynamicRecognitionEngine(std::string sLibrary = kLibraryName);
  ~DynamicRecognitionEngine() override;
  DynamicRecognitionEngine(const DynamicRecognitionEngine&) = delete;
  DynamicRecognitionEngine& operator=(const DynamicRecognitionEngine&) = delete;

  int16_t LoadImage(const char* sImageFile, int32_t lReserved, int16_t iXDPI, int16_t iYDPI,
                    int16_t iWidth, int16_t iHeight) override;
  int16_t UnloadImage() override;
  int16_t SearchOMRField(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                         int16_t& iNumRows, int16_t& iNumCols) override;
  int16_t CheckOMRField(int16_t iNumRows, int16_t iNumCols, int16_t iLeft, int16_t iTop,
                        int16_t iRight, int16_t iBottom, int16_t* iResults) override;
  int16_t CheckOMRFieldFill(int16_t iNumRows, int16_t iNumCols, int16_t iLeft, int16_t iTop,
                            int16_t iRight, int16_t iBottom, int16_t* iResults,
                            int16_t* iFill) override;
  int16_t CheckImageField(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                          int32_t& lFilledPixels) override;
  int16_t AlignOMRField(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                        int16_t iNumRows, int16_t iNumCols, int16_t iSearchDistance,
                        int16_t& iNewLeft, int16_t& iNewTop, int16_t& iNewRight,
                        int16_t& iNewBottom) override;
  int16_t GetMarkAreas(int16_t iLeft, int16_t iTop, int16_t iRight, int16_t iBottom,
                       int16_t iMinWidth, int16_t iMinHeight, int16_t iMaxMarks, int16_t& iNumMarks,
                       xunReadArea* oMarks) override;

 private:
  // The entry point's address; raises 53 when the library cannot be loaded, 453 when it lacks
  // the entry point.
  void* EntryPoint(const char* sName);

  std::string library_;
  void* handle_ = nullptr;
};

}  // namespace xun
