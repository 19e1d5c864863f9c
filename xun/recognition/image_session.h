// One load-work-unload sequence on the engine's single current image.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "xun/model/fwd.h"

namespace xun::detail {

// Loads an image on creation and unloads it on destruction, on every path, also when loading
// failed. Sequences of different threads wait for each other; starting a sequence inside another
// one of the same thread is error 5, since the engine has only one current image.
class ImageSession {
 public:
  ImageSession(const std::string& file, int16_t xdpi, int16_t ydpi, int16_t width, int16_t height);
  // The page's own image, resolution and size.
  explicit ImageSession(const clsXUNPage& page);
  ~ImageSession();
  ImageSession(const ImageSession&) = delete;
  ImageSession& operator=(const ImageSession&) = delete;

  int16_t LoadCode() const { return code_; }
  bool Loaded() const { return code_ == 0; }
  // Raises the load failure (error 75 naming the file and the engine's code) unless loaded.
  void RequireLoaded() const;

 private:
  void Unload() noexcept;

  std::unique_lock<std::mutex> lock_;
  std::string file_;
  int16_t code_ = 0;
};

// True when the page names an existing image file and has a positive resolution and size.
bool PageImageUsable(const clsXUNPage& page);
// Raises error 53 when the page's image file is missing, 5 when it lacks resolution or size.
void RequirePageImage(const clsXUNPage& page);
// The page's far edges in 100-dpi units, as the engine takes them.
int16_t PageRight(const clsXUNPage& page);
int16_t PageBottom(const clsXUNPage& page);

// The work on the loaded image, without traps, for the members and the writer.
int16_t RegisterOnLoadedImage(clsXUNField& field, const clsXUNPage& page);
bool AlignOnLoadedImage(clsXUNField& field);
bool CountFilledPixels(clsXUNPage& page);

}  // namespace xun::detail
