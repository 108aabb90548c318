#include "ZCommons/IO/NSDataEncryption.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>

using foundation::Data;
using foundation::DataView;

namespace {

constexpr std::size_t blockLength = 16;

enum Direction { decrypting = 0, encrypting = 1 };

struct ContextFree {
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};

/// A key of the right length, wiped at the end of its scope.
struct Key {
  explicit Key(DataView given) {
    std::copy_n(given.begin(), std::min(given.size(), bytes.size()), bytes.begin());
  }
  ~Key() { OPENSSL_cleanse(bytes.data(), bytes.size()); }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  std::array<std::uint8_t, blockLength> bytes{};
};

/// Takes back the errors that the library notes for the thread, which its caller may look at.
struct ErrorScope {
  ErrorScope() { ERR_set_mark(); }
  ~ErrorScope() { ERR_pop_to_mark(); }
  ErrorScope(const ErrorScope&) = delete;
  ErrorScope& operator=(const ErrorScope&) = delete;
};

// Fetched once and kept for the life of the process.
const EVP_CIPHER* cipher() {
  static EVP_CIPHER* const fetched = EVP_CIPHER_fetch(nullptr, "AES-128-CBC", nullptr);
  return fetched;
}

std::optional<Data> crypt(DataView data, DataView keyData, Direction direction) {
  const ErrorScope errors;
  const std::unique_ptr<EVP_CIPHER_CTX, ContextFree> context(EVP_CIPHER_CTX_new());
  const Key key(keyData);
  if (!context || !cipher() ||
      !EVP_CipherInit_ex2(context.get(), cipher(), key.bytes.data(), key.bytes.data(), direction,
                          nullptr)) {
    return std::nullopt;
  }
  Data result(data.size() + blockLength);
  std::uint8_t* end = result.data();
  int produced = 0;
  while (!data.empty()) {
    constexpr std::size_t longest = std::size_t{1} << 30;  // the library counts in int
    const DataView piece = data.first(std::min(data.size(), longest));
    if (!EVP_CipherUpdate(context.get(), end, &produced, piece.data(),
                          static_cast<int>(piece.size()))) {
      return std::nullopt;
    }
    end += produced;
    data = data.subspan(piece.size());
  }
  if (!EVP_CipherFinal_ex(context.get(), end, &produced)) return std::nullopt;
  end += produced;
  result.resize(static_cast<std::size_t>(end - result.data()));
  return result;
}

}  // namespace

std::optional<Data> NSDataEncryption::AES128EncryptWithData(DataView data, DataView key) {
  return crypt(data, key, encrypting);
}

std::optional<Data> NSDataEncryption::AES128DecryptWithData(DataView data, DataView key) {
  return crypt(data, key, decrypting);
}

std::optional<Data> NSDataEncryption::AES128EncryptWithKey(DataView data,
                                                           foundation::NullableText key) {
  return crypt(data, foundation::dataOf(key.view()), encrypting);
}

std::optional<Data> NSDataEncryption::AES128DecryptWithKey(DataView data,
                                                           foundation::NullableText key) {
  return crypt(data, foundation::dataOf(key.view()), decrypting);
}
