// The image routines of registration: loading a page image into the recognition engine and the
// work done on the loaded image. See docs/recognition.md.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "xun/export.h"
#include "xun/model/fwd.h"

namespace xun::basImage {

// Register's own answers, beside 0 (registered) and the engine's non-zero codes.
inline constexpr int16_t kRegisterNoImage = -1;        // no page, no image file, or no size
inline constexpr int16_t kRegisterInvalidRegion = -2;  // empty rectangle or grid, off the image
inline constexpr int16_t kRegisterBadResult = -3;      // the engine's grid does not fit the region
inline constexpr int16_t kRegisterFailed = -4;         // a failure, reported where it happened

// Makes the image current in the engine: the file, 0, and the resolutions and size in that order.
// Returns the engine's code unchanged; only 0 means loaded.
XUN_API int16_t LoadImage(const std::string& sImageFile, int16_t iXDPI, int16_t iYDPI,
                          int16_t iWidth, int16_t iHeight);

// The routines below work on the image that is current in the engine: call them between
// LoadImage and basExterns::CUnloadImage.

// Checks the OMR region's grid and stores the registration in its Extra. 0 when registered,
// otherwise the engine's code or one of the codes above.
XUN_API int16_t RegisterOMR(const std::shared_ptr<clsXUNField>& oField);
// Counts the dark pixels of the whole page into its FilledPixels. False, without asking the
// engine, when the page's resolution or size is not positive.
XUN_API bool CalculateFilledPixels(const std::shared_ptr<clsXUNPage>& oPage);
// Moves the OMR region's rectangle to where the engine finds its grid. False, the region
// unchanged, when the engine does not find it.
XUN_API bool AlignOMRField(const std::shared_ptr<clsXUNField>& oField);

}  // namespace xun::basImage
