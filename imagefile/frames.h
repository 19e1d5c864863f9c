// What a DecodedPage holds: the decoded frames and the page among them. Private to this folder.
#pragma once

#include "imagefile/decoded_page.h"
#include "imagefile/magick.h"

namespace xun::imagefile {

struct DecodedPage::Frames {
  magick::ImageList list;
  Image* page = nullptr;  // one of `list`
};

}  // namespace xun::imagefile
