// Small value conversions shared by the template objects, the reader and the writer: text to
// hexadecimal and back, a dictionary to one line of text and back, a lenient Boolean conversion,
// and the scrambling of values the template file stores in scrambled form.
//
// Every helper reports its own failures (at "basPublic.<name>") and then returns its empty
// result; none of them throws to the caller.
#pragma once

#include <cstdint>
#include <string>

#include "xun/export.h"
#include "xun/support/dictionary.h"
#include "xun/support/variant.h"

namespace xun::basPublic {

// The UTF-16LE bytes of `sText` as upper-case hexadecimal, two digits per byte ("AB" gives
// "41004200"). An empty text gives an empty text.
XUN_API std::string UnicodeToHex(const std::string& sText);

// The inverse of UnicodeToHex. A text shorter than two characters gives an empty text; a pair
// that is not hexadecimal is error 13. An odd number of bytes keeps the last byte as a code unit
// of its own.
XUN_API std::string HexToUnicode(const std::string& sHex);

// The dictionary as "key<sSeparator>item<sDelimiter>..." without the last delimiter. Empty keys
// are skipped; items that have no text form (objects, arrays, Empty, Null, error values) are
// left out. With `bKeysOnly` only the keys are listed. A dictionary that is not set is error 91.
XUN_API std::string DictionaryToString(const DictionaryPtr& oDictionary,
                                       const std::string& sDelimiter, const std::string& sSeparator,
                                       bool bKeysOnly);

// Replaces `oDictionary` by a new dictionary read from `sText`: entries split at `sDelimiter`,
// each split at its first `sSeparator` into key and item (both text); entries without a
// separator are skipped. Nothing happens when `oDictionary` is not set or `sText` is empty; a
// duplicate key is reported and leaves `oDictionary` as it was.
XUN_API void StringToDictionary(const std::string& sText, DictionaryPtr& oDictionary,
                                const std::string& sDelimiter, const std::string& sSeparator);

// Cuts `sDelimiter` from the end of `sText` up to `lCount` times (below 1 means 32767), stopping
// as soon as the text no longer ends with it.
XUN_API std::string RemoveTrailingDelimiter(const std::string& sText, const std::string& sDelimiter,
                                            int32_t lCount);

// A shallow copy: the same keys in the same order; object items are shared, other items copied.
// A source that is not set is error 91 (the result is then nullptr).
XUN_API DictionaryPtr CopyDictionary(const DictionaryPtr& oSource);

// A lenient Boolean: numbers and Booleans convert as usual; text is trimmed and read as a number,
// as "True"/"False" in any letter case, or by its leading number ("2abc" is True); Empty, Null,
// objects, error values (Missing too) and arrays are False. Never fails.
XUN_API bool CBoolean(const Variant& vValue);

// Scrambles `sValue` with three-key triple DES: the value is hex-converted (UnicodeToHex),
// padded with spaces to a whole number of 8-character blocks and encrypted; the result is
// upper-case hexadecimal. Each key must be 8 characters that Windows-1252 holds (else error 5).
// `bHex` is set to true when the value was hex-converted, which is always, since text holds two
// bytes per character; callers store the flag to know to apply HexToUnicode after Decrypt.
// An empty `sValue` gives an empty text and leaves `bHex` alone.
XUN_API std::string Encrypt(const std::string& sValue, const std::string& sKey1,
                            const std::string& sKey2, const std::string& sKey3, bool& bHex);

// Unscrambles the result of Encrypt under the same keys, with every NUL and the trailing spaces
// removed. It does not undo the hex conversion: callers apply HexToUnicode themselves. Cipher
// text that is not hexadecimal or not a whole number of blocks is error 5.
XUN_API std::string Decrypt(const std::string& sValue, const std::string& sKey1,
                            const std::string& sKey2, const std::string& sKey3);

}  // namespace xun::basPublic
