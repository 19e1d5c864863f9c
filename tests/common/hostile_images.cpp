#include "common/hostile_images.h"

namespace xun::testing {
namespace {

void Be32(std::string& out, uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8)
    out += static_cast<char>((v >> shift) & 0xFF);
}

void Le32(std::string& out, uint32_t v) {
  for (int shift = 0; shift < 32; shift += 8)
    out += static_cast<char>((v >> shift) & 0xFF);
}

}  // namespace

std::string PngHeader(uint32_t width, uint32_t height) {
  std::string png("\x89PNG\r\n\x1a\n", 8);
  const auto chunk = [&](const std::string& type, const std::string& data) {
    Be32(png, static_cast<uint32_t>(data.size()));
    const std::string body = type + data;
    png += body;
    uint32_t crc = 0xFFFFFFFF;
    for (const char c : body) {
      crc ^= static_cast<uint8_t>(c);
      for (int bit = 0; bit < 8; ++bit)
        crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    Be32(png, crc ^ 0xFFFFFFFF);
  };
  std::string header;
  Be32(header, width);
  Be32(header, height);
  header += std::string("\x08\x00\x00\x00\x00", 5);
  chunk("IHDR", header);
  chunk("IDAT", "");
  return png;
}

std::string PcxHeader(uint16_t width, uint16_t height, std::size_t data) {
  std::string pcx(128, '\0');
  pcx[0] = 0x0A;
  pcx[1] = 5;
  pcx[2] = 1;
  pcx[3] = 1;  // bits per pixel
  pcx[8] = static_cast<char>((width - 1) & 0xFF);
  pcx[9] = static_cast<char>((width - 1) >> 8);
  pcx[10] = static_cast<char>((height - 1) & 0xFF);
  pcx[11] = static_cast<char>((height - 1) >> 8);
  pcx[65] = 1;  // planes
  const uint16_t line = static_cast<uint16_t>((width + 15) / 16 * 2);
  pcx[66] = static_cast<char>(line & 0xFF);
  pcx[67] = static_cast<char>(line >> 8);
  return pcx + std::string(data, '\xFF');
}

std::string Dcx(const std::vector<std::string>& pages) {
  std::string dcx("\xB1\x68\xDE\x3A", 4);
  uint32_t offset = static_cast<uint32_t>(4 + 4 * (pages.size() + 1));
  for (const std::string& page : pages) {
    Le32(dcx, offset);
    offset += static_cast<uint32_t>(page.size());
  }
  Le32(dcx, 0);
  for (const std::string& page : pages)
    dcx += page;
  return dcx;
}

std::vector<HostileFile> WriteHostileFiles(const TempFolder& folder, const std::string& good_png,
                                           const std::string& good_pcx) {
  std::vector<HostileFile> files;
  const auto add = [&](const std::string& name, const std::string& bytes, Refusal refusal) {
    WriteFileBytes(folder.File(name), bytes);
    files.push_back({name, folder.File(name), refusal});
  };
  files.push_back({"missing.png", folder.File("missing.png"), Refusal::kNotFound});
  files.push_back({"a folder", folder.path(), Refusal::kNotFound});
  add("empty.png", "", Refusal::kNotAnImage);
  add("text.png", "not an image at all, just some words", Refusal::kNotAnImage);
  add("truncated.png", good_png.substr(0, good_png.size() / 2), Refusal::kNotAnImage);
  add("truncated.pcx", good_pcx.substr(0, 200), Refusal::kNotAnImage);
  add("huge.png", PngHeader(60000, 60000), Refusal::kTooLargeOrNotAnImage);
  add("huge.pcx", PcxHeader(60000, 60000, 64), Refusal::kTooLarge);
  add("many_pixels.pcx", PcxHeader(10000, 10000, 64), Refusal::kTooLarge);
  add("lying.pcx", PcxHeader(4000, 4000, 300), Refusal::kNotAnImage);
  add("zero.png", PngHeader(0, 0), Refusal::kNotAnImage);
  return files;
}

}  // namespace xun::testing
