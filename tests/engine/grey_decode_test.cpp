// PNG and JPEG pages read straight to grey by their own libraries give what the image library's
// path gives, and refuse what it refuses.
#include <Magick++.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "imagefile/decode_error.h"
#include "imagefile/image_file.h"

namespace xun::testing {
namespace {

using imagefile::DecodeError;
using imagefile::DecodeFailure;
using imagefile::ImageFile;

struct Grey {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;
};

Grey ThroughImageLibrary(const std::string& path) {
  const imagefile::DecodedPage page = ImageFile::Open(path).Decode(0);
  Grey grey{page.Width(), page.Height(), {}};
  grey.pixels.resize(static_cast<size_t>(grey.width) * static_cast<size_t>(grey.height));
  page.ReadGrey({0, 0, grey.width, grey.height}, grey.pixels.data(),
                static_cast<size_t>(grey.width));
  return grey;
}

Grey Straight(const std::string& path) {
  Grey grey;
  ImageFile::Open(path).DecodeGrey(0, [&grey](int32_t width, int32_t height) {
    grey.width = width;
    grey.height = height;
    grey.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    return imagefile::GreyRows{grey.pixels.data(), static_cast<size_t>(width)};
  });
  return grey;
}

// A picture with every kind of pixel a scan of a form shows: colour gradients, half-transparent
// strokes, black, white.
Magick::Image Picture() {
  Magick::InitializeMagick(nullptr);
  constexpr int kWidth = 97, kHeight = 61;  // odd sizes: no row padding hides an error
  std::vector<uint8_t> rgba;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      rgba.push_back(static_cast<uint8_t>(x * 255 / kWidth));
      rgba.push_back(static_cast<uint8_t>(y * 255 / kHeight));
      rgba.push_back(static_cast<uint8_t>((x * y) % 256));
      rgba.push_back(static_cast<uint8_t>(x < 10 ? 255 : (x * 7 + y * 3) % 256));
    }
  return Magick::Image(kWidth, kHeight, "RGBA", Magick::CharPixel, rgba.data());
}

std::string Write(Magick::Image image, const std::string& path, const std::string& format) {
  image.magick(format);
  image.write(path);
  return path;
}

TEST(GreyDecode, GivesTheImageLibrarysGreyForEveryKindOfPngAndJpeg) {
  TempFolder folder;
  struct Case {
    std::string name;
    Magick::Image image;
    std::string format;
  };
  std::vector<Case> cases;
  Magick::Image rgba = Picture();
  cases.push_back({"rgba.png", rgba, "PNG"});
  Magick::Image rgb = Picture();
  rgb.matte(false);
  cases.push_back({"rgb.png", rgb, "PNG"});
  cases.push_back({"rgb.jpg", rgb, "JPEG"});
  Magick::Image grey = rgb;
  grey.type(Magick::GrayscaleType);
  cases.push_back({"grey.png", grey, "PNG"});
  cases.push_back({"grey.jpg", grey, "JPEG"});
  Magick::Image grey_alpha = Picture();
  grey_alpha.type(Magick::GrayscaleMatteType);
  cases.push_back({"grey-alpha.png", grey_alpha, "PNG"});
  Magick::Image palette = rgb;
  palette.quantizeColors(16);
  palette.quantize();
  palette.type(Magick::PaletteType);
  cases.push_back({"palette.png", palette, "PNG"});
  Magick::Image bilevel = grey;
  bilevel.threshold(128);
  bilevel.type(Magick::BilevelType);
  cases.push_back({"bilevel.png", bilevel, "PNG"});
  Magick::Image deep = rgb;
  deep.depth(16);
  cases.push_back({"deep.png", deep, "PNG"});
  Magick::Image interlaced = rgb;
  interlaced.interlaceType(Magick::LineInterlace);
  cases.push_back({"interlaced.png", interlaced, "PNG"});

  for (Case& c : cases) {
    const std::string path = Write(c.image, folder.File(c.name), c.format);
    const Grey expected = ThroughImageLibrary(path), got = Straight(path);
    ASSERT_EQ(got.width, expected.width) << c.name;
    ASSERT_EQ(got.height, expected.height) << c.name;
    // 16 bits to 8 are rounded by two formulas that may differ by one level.
    const int tolerance = c.name == "deep.png" ? 1 : 0;
    int worst = 0;
    for (size_t i = 0; i < got.pixels.size(); ++i)
      worst = std::max(worst, std::abs(got.pixels[i] - expected.pixels[i]));
    EXPECT_LE(worst, tolerance) << c.name;
  }
}

DecodeFailure FailureOf(const std::string& path) {
  try {
    Straight(path);
  } catch (const DecodeError& e) {
    return e.Failure();
  }
  ADD_FAILURE() << path << " was read";
  return DecodeFailure::kReadFailed;
}

TEST(GreyDecode, RefusesDamagedFilesAndHugeHeaders) {
  TempFolder folder;
  Magick::Image rgb = Picture();
  rgb.matte(false);
  for (const std::string format : {"PNG", "JPEG"}) {
    const std::string bytes = ReadFileBytes(Write(rgb, folder.File("good." + format), format));
    const std::string cut = folder.File("cut." + format);
    std::ofstream(cut, std::ios::binary) << bytes.substr(0, bytes.size() * 2 / 3);
    EXPECT_EQ(FailureOf(cut), DecodeFailure::kNotAnImage) << format;
  }
  // A pixel of the PNG's compressed data changed: its checksum no longer holds.
  std::string png = ReadFileBytes(folder.File("good.PNG"));
  const size_t data = png.find("IDAT");
  ASSERT_NE(data, std::string::npos);
  png[data + 20] = static_cast<char>(png[data + 20] ^ 0x55);
  std::ofstream(folder.File("bad-crc.png"), std::ios::binary) << png;
  EXPECT_EQ(FailureOf(folder.File("bad-crc.png")), DecodeFailure::kNotAnImage);

  // A JPEG whose header claims 60000 x 60000: refused from the header, before any pixel.
  std::string jpeg = ReadFileBytes(folder.File("good.JPEG"));
  const size_t frame = jpeg.find("\xFF\xC0");
  ASSERT_NE(frame, std::string::npos);
  for (size_t at : {frame + 5, frame + 7}) {
    jpeg[at] = static_cast<char>(0xEA);
    jpeg[at + 1] = static_cast<char>(0x60);
  }
  std::ofstream(folder.File("huge.jpg"), std::ios::binary) << jpeg;
  EXPECT_EQ(FailureOf(folder.File("huge.jpg")), DecodeFailure::kTooLarge);
}

}  // namespace
}  // namespace xun::testing
