#include "ZCommons/IO/ZCIODigest.h"

#include <string>

#include <openssl/evp.h>

#include "foundation/Assertion.h"
#include "foundation/NSException.h"

using foundation::Data;
using foundation::DataView;

namespace {

void check(bool success, const char* call) {
  if (success) return;
  foundation::raise<foundation::NSGenericException>(std::string(call) + " failed");
}

// Fetched once and kept for the life of the process: a search by name costs more than a digest.
const EVP_MD* fetched(ZCIODigest::Algorithm algorithm) {
  static EVP_MD* const digests[] = {EVP_MD_fetch(nullptr, "MD5", nullptr),
                                    EVP_MD_fetch(nullptr, "SHA256", nullptr)};
  const EVP_MD* const digest = digests[static_cast<int>(algorithm)];
  check(digest, "EVP_MD_fetch");
  return digest;
}

thread_local constinit bool threadContextIsGone = false;

struct ThreadContext {
  ~ThreadContext() {
    EVP_MD_CTX_free(context);
    threadContextIsGone = true;
  }

  EVP_MD_CTX* const context = EVP_MD_CTX_new();
};

// One context a thread: making one costs as much as a short digest. Null where there is none, as at
// the thread's end.
EVP_MD_CTX* threadContext() {
  if (threadContextIsGone) return nullptr;
  static thread_local const ThreadContext shared;
  return shared.context;
}

}  // namespace

void ZCIODigest::Release::operator()(evp_md_ctx_st* context) const { EVP_MD_CTX_free(context); }

ZCIODigest::ZCIODigest(Algorithm algorithm) : context_(EVP_MD_CTX_new()) {
  if (!context_) foundation::raiseMallocException("digest");
  check(EVP_DigestInit_ex2(context_.get(), fetched(algorithm), nullptr), "EVP_DigestInit_ex2");
}

ZCIODigest::~ZCIODigest() = default;

void ZCIODigest::update(DataView data) {
  check(EVP_DigestUpdate(context_.get(), data.data(), data.size()), "EVP_DigestUpdate");
}

Data ZCIODigest::finish() {
  Data digest(static_cast<std::size_t>(EVP_MD_CTX_get_size(context_.get())));
  check(EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr), "EVP_DigestFinal_ex");
  return digest;
}

void ZCIODigest::compute(Algorithm algorithm, DataView data, std::span<std::uint8_t> digest) {
  const EVP_MD* const function = fetched(algorithm);
  ZARVO_ASSERT(digest.size() == static_cast<std::size_t>(EVP_MD_get_size(function)));
  EVP_MD_CTX* const context = threadContext();
  if (!context) {
    check(EVP_Digest(data.data(), data.size(), digest.data(), nullptr, function, nullptr),
          "EVP_Digest");
    return;
  }
  check(EVP_DigestInit_ex2(context, function, nullptr), "EVP_DigestInit_ex2");
  check(EVP_DigestUpdate(context, data.data(), data.size()), "EVP_DigestUpdate");
  check(EVP_DigestFinal_ex(context, digest.data(), nullptr), "EVP_DigestFinal_ex");
}
