#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "foundation/Data.h"

struct evp_md_ctx_st;

/// A digest computed piece by piece: MD5 (RFC 1321, 16 bytes) or SHA-256 (FIPS 180-4, 32 bytes).
///
/// One thread at a time. Raises NSGenericException where the machine's cryptographic library does
/// not offer the algorithm.
///
///     ZCIODigest digest(ZCIODigest::Algorithm::MD5);
///     digest.update(foundation::dataOf("a"));
///     digest.update(foundation::dataOf("bc"));
///     const foundation::Data bytes = digest.finish();   // 900150983cd24fb0…
class ZCIODigest {
 public:
  enum class Algorithm { MD5, SHA256 };

  explicit ZCIODigest(Algorithm algorithm);
  ~ZCIODigest();

  /// Adds `data` behind what was added before.
  void update(foundation::DataView data);

  /// The digest of all that was added; only `finish` ends a digest, and nothing may follow it.
  foundation::Data finish();

  /// Puts the digest of `data` alone into `digest`, which is as long as the algorithm's digests
  /// are.
  static void compute(Algorithm algorithm, foundation::DataView data,
                      std::span<std::uint8_t> digest);

 private:
  struct Release {
    void operator()(evp_md_ctx_st* context) const;
  };

  const std::unique_ptr<evp_md_ctx_st, Release> context_;
};
