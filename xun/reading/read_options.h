// How a FormReader reads what is not bubbles: where it writes image clips, which language its
// OCR reads.
#pragma once

#include <string>

namespace xun::reading {

struct ReadOptions {
  // Where image clips, and the clips of OCR answers a person should check, are written. Without
  // one, image-clip regions give their ErrorReturn and OCR answers carry no clip.
  std::string clip_folder;
  // Tesseract's name for the language of OCR regions; its data must be installed.
  std::string ocr_language = "eng";
};

}  // namespace xun::reading
