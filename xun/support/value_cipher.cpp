// The scrambling of stored values: three-key triple DES (EDE, ECB) with OpenSSL's libcrypto.
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"

namespace xun::basPublic {
namespace {

constexpr size_t kBlock = 8;
constexpr size_t kKeyPart = 8;

// The 24 key bytes; wiped when dropped, since they are the keys in clear.
struct KeyBytes {
  std::array<unsigned char, 3 * kKeyPart> bytes{};
  ~KeyBytes() { OPENSSL_cleanse(bytes.data(), bytes.size()); }
};

// Each key text is 8 characters that Windows-1252 holds, one byte each, in the order given.
// A character the code page lacks is refused rather than turned into "?", which would make
// different keys the same key.
void MakeKey(const std::string& key1, const std::string& key2, const std::string& key3,
             KeyBytes& key) {
  const std::string* parts[] = {&key1, &key2, &key3};
  for (size_t i = 0; i < 3; ++i) {
    bool lossless = true;
    std::string bytes = text::Utf8ToWindows1252(*parts[i], &lossless);
    if (!lossless || bytes.size() != kKeyPart) {
      OPENSSL_cleanse(bytes.data(), bytes.size());
      Raise(kErrInvalidCall);
    }
    for (size_t j = 0; j < kKeyPart; ++j)
      key.bytes[i * kKeyPart + j] = static_cast<unsigned char>(bytes[j]);
    OPENSSL_cleanse(bytes.data(), bytes.size());
  }
}

struct ContextFree {
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using ContextPtr = std::unique_ptr<EVP_CIPHER_CTX, ContextFree>;

// A failure inside libcrypto: its error queue is of no use to our callers, so it is cleared.
[[noreturn]] void CipherFailed(int32_t number) {
  ERR_clear_error();
  Raise(number);
}

// Encrypts (encrypt = 1) or decrypts (0) whole blocks; `input` is a whole number of blocks.
std::string RunCipher(std::string_view input, const KeyBytes& key, int encrypt) {
  ContextPtr context(EVP_CIPHER_CTX_new());
  if (!context) CipherFailed(kErrOutOfMemory);
  if (EVP_CipherInit_ex(context.get(), EVP_des_ede3_ecb(), nullptr, key.bytes.data(), nullptr,
                        encrypt) != 1)
    CipherFailed(kErrCantCreateObject);
  // The blocks are filled by the caller (spaces), so the cipher must add nothing.
  if (EVP_CIPHER_CTX_set_padding(context.get(), 0) != 1) CipherFailed(kErrCantCreateObject);

  std::string output(input.size() + kBlock, '\0');
  int written = 0;
  if (EVP_CipherUpdate(context.get(), reinterpret_cast<unsigned char*>(output.data()), &written,
                       reinterpret_cast<const unsigned char*>(input.data()),
                       static_cast<int>(input.size())) != 1)
    CipherFailed(kErrInternal);
  int final_written = 0;
  if (EVP_CipherFinal_ex(context.get(), reinterpret_cast<unsigned char*>(output.data()) + written,
                         &final_written) != 1)
    CipherFailed(kErrInternal);
  output.resize(static_cast<size_t>(written) + static_cast<size_t>(final_written));
  return output;
}

std::string ToUpperHex(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string hex;
  hex.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const auto b = static_cast<unsigned char>(byte);
    hex += kDigits[b >> 4];
    hex += kDigits[b & 0x0F];
  }
  return hex;
}

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// Cipher text back to bytes: pairs of hex digits, a whole number of blocks, else error 5.
std::string FromCipherHex(std::string_view hex) {
  if (hex.size() % (2 * kBlock) != 0) Raise(kErrInvalidCall);
  std::string bytes(hex.size() / 2, '\0');
  for (size_t i = 0; i < bytes.size(); ++i) {
    const int hi = DigitValue(hex[2 * i]);
    const int lo = DigitValue(hex[2 * i + 1]);
    if (hi < 0 || lo < 0) Raise(kErrInvalidCall);
    bytes[i] = static_cast<char>(hi * 16 + lo);
  }
  return bytes;
}

}  // namespace

std::string Encrypt(const std::string& sValue, const std::string& sKey1, const std::string& sKey2,
                    const std::string& sKey3, bool& bHex) {
  return Trap("basPublic.Encrypt", std::string{}, [&] {
    if (sValue.empty()) return std::string{};
    KeyBytes key;
    MakeKey(sKey1, sKey2, sKey3, key);
    // Text holds two bytes per character, so the value is always hex-converted, whatever the
    // caller asked; the flag tells the caller so.
    std::string plain = UnicodeToHex(sValue);
    bHex = true;
    plain.append((kBlock - plain.size() % kBlock) % kBlock, ' ');
    return ToUpperHex(RunCipher(plain, key, 1));
  });
}

std::string Decrypt(const std::string& sValue, const std::string& sKey1, const std::string& sKey2,
                    const std::string& sKey3) {
  return Trap("basPublic.Decrypt", std::string{}, [&] {
    if (sValue.empty()) return std::string{};
    KeyBytes key;
    MakeKey(sKey1, sKey2, sKey3, key);
    std::string plain = RunCipher(FromCipherHex(sValue), key, 0);
    std::erase(plain, '\0');
    while (!plain.empty() && plain.back() == ' ')
      plain.pop_back();
    // Deliberately left hex-converted: callers that stored the value hex-converted apply
    // HexToUnicode themselves.
    // Under the right keys this is ASCII; under wrong ones any bytes, which Windows-1252 maps
    // to text without loss.
    return text::Windows1252ToUtf8(plain);
  });
}

}  // namespace xun::basPublic
